#include "mainwindow/PanesLayout.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int layoutVersion = 1;
constexpr int narrowest = 24;
constexpr int widest = 2000;

QJsonObject objectOf(const QString& text)
{
    return QJsonDocument::fromJson(text.toUtf8()).object();
}

int versionOf(const QJsonObject& object)
{
    return object["version"_L1].toInt();
}

} // namespace

QString panesLayoutText(const PanesLayout& layout)
{
    QJsonObject columns;
    for (auto it = layout.columns.cbegin(), end = layout.columns.cend(); it != end; ++it) {
        QJsonArray widths;
        for (const int width : it->widths)
            widths.append(width);
        columns.insert(it.key(), QJsonObject{{u"fontHeight"_s, it->fontHeight}, {u"widths"_s, widths}});
    }
    const QJsonObject object{
        {u"version"_s, layoutVersion},
        {u"tab"_s, layout.tab},
        {u"popup"_s, QString::fromLatin1(layout.popup.toBase64())},
        {u"columns"_s, columns},
    };
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

std::optional<PanesLayout> readPanesLayout(const QString& text)
{
    const QJsonObject object = objectOf(text);
    if (versionOf(object) != layoutVersion)
        return std::nullopt;
    PanesLayout layout;
    layout.tab = object["tab"_L1].toString();
    layout.popup = QByteArray::fromBase64(object["popup"_L1].toString().toLatin1());
    const QJsonObject columns = object["columns"_L1].toObject();
    for (auto it = columns.constBegin(), end = columns.constEnd(); it != end; ++it) {
        const QJsonObject saved = it->toObject();
        PanesLayout::Columns& list = layout.columns[it.key()];
        list.fontHeight = std::max(0, saved["fontHeight"_L1].toInt());
        for (const QJsonValue width : saved["widths"_L1].toArray())
            list.widths.append(std::clamp(width.toInt(), 0, widest));
    }
    return layout;
}

bool isLaterPanesLayout(const QString& text)
{
    return versionOf(objectOf(text)) > layoutVersion;
}

int fittedColumnWidth(int saved, int savedFontHeight, int fontHeight)
{
    if (saved <= 0)
        return 0;
    const double scale = savedFontHeight > 0 && fontHeight > 0 ? double(fontHeight) / savedFontHeight : 1.0;
    return int(std::clamp(saved * scale, double(narrowest), double(widest)));
}
