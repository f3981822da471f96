#include "net/SafeText.h"

#include "app/Log.h"

namespace {

constexpr qsizetype longestText = 4096;

} // namespace

QString safeText(const QString& text)
{
    return shortened(maskSecrets(text), longestText);
}

QString shortened(const QString& text, qsizetype longest)
{
    if (text.size() <= longest)
        return text;
    const bool splitsPair = text.at(longest).isLowSurrogate() && text.at(longest - 1).isHighSurrogate();
    return text.first(splitsPair ? longest - 1 : longest) + u'…';
}
