#include "net/SafeText.h"

#include "app/TerminalSettings.h"
#include "net/UrlParts.h"

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype shortestSecret = 4;
constexpr qsizetype longestText = 4096;

QString withoutToken(const QString& text)
{
    const QString token = TerminalSettings::instance().token();
    if (token.size() < shortestSecret)
        return text;
    QString result = text;
    result.replace(token, "***"_L1);
    result.replace(encodeQueryValue(token), "***"_L1, Qt::CaseInsensitive);
    return result;
}

} // namespace

QString safeText(const QString& text)
{
    const QString result = withoutToken(text);
    return result.size() <= longestText ? result : result.first(longestText) + u'…';
}
