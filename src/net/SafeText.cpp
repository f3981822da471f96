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
    return shortened(withoutToken(text), longestText);
}

QString shortened(const QString& text, qsizetype longest)
{
    if (text.size() <= longest)
        return text;
    const bool splitsPair = text.at(longest).isLowSurrogate() && text.at(longest - 1).isHighSurrogate();
    return text.first(splitsPair ? longest - 1 : longest) + u'…';
}
