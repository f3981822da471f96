#include "net/UrlParts.h"

#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

bool isDots(QStringView segment)
{
    return segment == "."_L1 || segment == ".."_L1;
}

} // namespace

QString encodeQueryValue(const QString& value)
{
    return QString::fromLatin1(QUrl::toPercentEncoding(value));
}

std::optional<QString> encodePathSegment(const QString& id)
{
    if (id.isEmpty() || isDots(id))
        return std::nullopt;
    return encodeQueryValue(id);
}

bool hasDotSegment(const QString& path)
{
    const qsizetype end = path.indexOf(u'?');
    const auto segments = QStringView(path).first(end < 0 ? path.size() : end).split(u'/');
    for (const QStringView segment : segments) {
        if (isDots(QUrl::fromPercentEncoding(segment.toUtf8())))
            return true;
    }
    return false;
}
