#include "app/base/ServerText.h"

#include "app/base/Secrets.h"

#include <QStringList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestName = 64;
constexpr qsizetype longestSentence = 300;
constexpr qsizetype longestEntry = 8192;
constexpr int mostLines = 4;
constexpr QChar zeroWidthSpace(0x200b);

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

QString withEllipsis(QString text)
{
    if (!text.isEmpty() && text.back().isHighSurrogate())
        text.chop(1);
    return text + u'…';
}

/// Hides what is secret in the first `longest` characters and drops the rest, without a look at all of it.
QString head(const QString& text, qsizetype longest, QString (*form)(const QString&))
{
    const qsizetype reach = longestSecret();
    if (text.size() <= longest + reach)
        return shortened(maskSecrets(form(text)), longest);
    QString start = maskSecrets(form(text.first(longest + reach)));
    // The end of the start may be the beginning of a secret, moved forward by what was hidden before it.
    start.chop(std::max<qsizetype>(reach - 1, 0));
    return withEllipsis(start.left(longest));
}

QString asItIs(const QString& text)
{
    return text;
}

} // namespace

QString shownName(const QString& text)
{
    return head(text, longestName, &oneLine);
}

QString shownSentence(const QString& text)
{
    return head(text, longestSentence, &oneLine);
}

QString shownReason(const QString& text)
{
    const QString start = head(text.trimmed(), longestSentence, &asItIs);
    QStringList lines;
    QString line;
    for (const QChar c : start) {
        if (!breaksLine(c) || c == u'\t') {
            line += c;
            continue;
        }
        if (!line.trimmed().isEmpty())
            lines.append(line);
        line.clear();
    }
    if (!line.trimmed().isEmpty())
        lines.append(line);
    if (lines.size() > mostLines) {
        lines = lines.first(mostLines);
        lines.last() = withEllipsis(lines.last());
    }
    const QString shown = lines.join(u'\n');
    return shown.isEmpty() && !text.isEmpty() ? withEllipsis({}) : shown;
}

QString shownEntry(const QString& text)
{
    return head(text, longestEntry, &oneLine);
}

QString shortened(const QString& text, qsizetype longest)
{
    return text.size() <= longest ? text : withEllipsis(text.first(longest));
}

QString oneLine(const QString& text)
{
    if (std::none_of(text.cbegin(), text.cend(), breaksLine))
        return text;
    QString line = text;
    std::replace_if(line.begin(), line.end(), breaksLine, u' ');
    return line;
}

QString balloonText(const QString& text)
{
    QString shown = shownReason(text);
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
