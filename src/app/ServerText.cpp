#include "app/ServerText.h"

#include <QLabel>
#include <QTextDocument>

using namespace Qt::StringLiterals;

namespace {

bool breaksLine(QChar c)
{
    const QChar::Category category = c.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line
        || category == QChar::Separator_Paragraph;
}

bool looksLikeTag(QChar c, QChar next)
{
    return c == u'<' && (next == u'/' || next.isLetter());
}

} // namespace

QString oneLine(const QString& text)
{
    if (std::none_of(text.cbegin(), text.cend(), breaksLine))
        return text;
    QString line = text;
    std::replace_if(line.begin(), line.end(), breaksLine, u' ');
    return line;
}

QString plainToolTip(const QString& text)
{
    if (!Qt::mightBeRichText(text))
        return text;
    return "<span style=\"white-space:pre-wrap\">"_L1 + text.toHtmlEscaped() + "</span>"_L1;
}

QString balloonText(const QString& text)
{
    constexpr QChar zeroWidthSpace(0x200b);
    QString shown = text;
    for (qsizetype i = shown.size() - 2; i >= 0; --i) {
        if (looksLikeTag(shown.at(i), shown.at(i + 1)))
            shown.insert(i + 1, zeroWidthSpace);
    }
    return shown;
}

QString menuText(const QString& text)
{
    return oneLine(text).replace(u'&', "&&"_L1);
}

void makePlain(QLabel* label)
{
    label->setTextFormat(Qt::PlainText);
}

QLabel* plainLabel(const QString& text, QWidget* parent)
{
    auto* label = new QLabel(parent);
    makePlain(label);
    label->setText(text);
    return label;
}
