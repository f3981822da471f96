// Texts of the server, a script or a file on their way to a label, a line or a balloon. The byte 1 stands for
// the secret that must never show.

#include "fuzz/FuzzQt.h"

#include "app/base/Secrets.h"
#include "app/base/ServerText.h"

using fuzz::demand;
using namespace Qt::StringLiterals;

namespace fuzz_texts {

namespace {

constexpr qsizetype shortest = 5; // pieces of a secret that would be noticed

const QString& secret()
{
    static const QString text = u"Zq7+Xk/2vW=9Yj%4"_s;
    return text;
}

/// Whether the text shows any piece of the secret.
bool tells(const QString& text)
{
    for (qsizetype from = 0; from + shortest <= secret().size(); ++from) {
        if (text.contains(QStringView(secret()).sliced(from, shortest)))
            return true;
    }
    return false;
}

bool breaksSurrogate(const QString& text)
{
    return text.size() > 1 && text.back() == u'…' && text.at(text.size() - 2).isHighSurrogate();
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    static const bool isKept = [] {
        keepSecret(secret());
        return true;
    }();
    demand(isKept, "the secret is known");
    QString text = fuzz::stringOf(fuzz::textOf(data, size));
    if (tells(text))
        return 0;
    text.replace(QChar(1), secret());

    const QString reason = shownReason(text);
    const QString balloon = balloonText(text);
    for (const QString& shown : {shownName(text), shownSentence(text), shownEntry(text), reason, balloon})
        demand(!tells(shown), "a secret stays one");
    for (const QString& shown : {shownName(text), shownSentence(text), shownEntry(text), reason})
        demand(!breaksSurrogate(shown), "no character is cut in half");
    demand(fuzz::isOneLine(shownName(text)) && shownName(text).size() <= 65, "a name is one short line");
    demand(
        fuzz::isOneLine(shownSentence(text)) && shownSentence(text).size() <= 301, "a sentence is one line");
    demand(fuzz::isOneLine(shownEntry(text)) && shownEntry(text).size() <= 8193, "an entry is one line");
    const QStringList lines = reason.split(u'\n');
    demand(lines.size() <= 4 && reason.size() <= 305, "a reason is short");
    demand(text.isEmpty() == reason.isEmpty(), "a failure has a reason");
    for (qsizetype i = 0; i + 1 < balloon.size(); ++i)
        demand(balloon.at(i) != u'<' || (balloon.at(i + 1) != u'/' && !balloon.at(i + 1).isLetter()),
            "a balloon has no tag");
    demand(fuzz::isOneLine(oneLine(text)) && oneLine(text).size() == text.size(),
        "one line has as many letters");
    demand(!menuText(text).remove(u"&&"_s).contains(u'&'), "a menu's text has no key");
    return 0;
}

constexpr std::size_t longest = 20'000; // more than twice an entry
const fuzz::Target target("texts", &attempt, longest);

} // namespace

} // namespace fuzz_texts
