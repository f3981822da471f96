#include "lab/run/ScriptScanner.h"

#include <QStringView>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace lab {

namespace {

bool isLineEnd(QChar c)
{
    return c == u'\n' || c == u'\r' || c == u'\u2028' || c == u'\u2029';
}

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

bool isHexDigit(QChar c)
{
    return isDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

bool isWordStart(QChar c)
{
    return c.isLetter() || c == u'_' || c == u'$' || c == u'\\' || c.isSurrogate();
}

bool isWordPart(QChar c)
{
    return isWordStart(c) || c.isLetterOrNumber() || c.isMark() || c == u'\u200c' || c == u'\u200d'
        || c.category() == QChar::Punctuation_Connector;
}

template <std::size_t N> bool isOneOf(QStringView word, const std::array<QStringView, N>& words)
{
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// After these comes a value, or a statement.
bool isOperatorWord(QStringView word)
{
    static constexpr std::array<QStringView, 14> words{u"return", u"typeof", u"case", u"in", u"of",
        u"instanceof", u"new", u"delete", u"void", u"throw", u"do", u"else", u"yield", u"await"};
    return isOneOf(word, words);
}

/// The parentheses after these hold a condition, and a statement follows.
bool isConditionWord(QStringView word)
{
    static constexpr std::array<QStringView, 4> words{u"if", u"while", u"for", u"with"};
    return isOneOf(word, words);
}

} // namespace

QChar ScriptScanner::at(qsizetype place) const
{
    return place < m_text.size() ? m_text[place] : QChar();
}

ScriptToken ScriptScanner::next()
{
    skipBlanksAndComments();
    ScriptToken token;
    token.start = m_place;
    token.line = m_line;
    token.depth = static_cast<int>(m_open.size());
    token.isGoverned = (m_lastText == u")" && m_lastIsPlain) || m_lastText == u":"
        || (!m_afterDot && (m_lastText == u"else" || m_lastText == u"do"));
    if (m_place >= m_text.size()) {
        token.end = m_place;
        return token;
    }
    const bool afterDot = m_last.kind == ScriptToken::Kind::Sign && m_lastText == u".";
    const QChar first = m_text[m_place];
    if (isWordStart(first)) {
        token.kind = ScriptToken::Kind::Word;
        m_place = endOfWord(m_place);
    } else if (isDigit(first) || (first == u'.' && isDigit(at(m_place + 1)))) {
        token.kind = ScriptToken::Kind::Number;
        m_place = endOfNumber(m_place);
    } else if (first == u'"' || first == u'\'') {
        token.kind = ScriptToken::Kind::Text;
        bool isClosed = false;
        const qsizetype end = endOfText(m_place, isClosed);
        token.isBroken = !isClosed;
        while (m_place < end) {
            if (isLineEnd(m_text[m_place])) // after a backslash
                passLineEnd();
            else
                ++m_place;
        }
    } else if (first == u'`') {
        token.kind = ScriptToken::Kind::Template;
        ++m_place;
        passTemplate();
    } else if (first == u'/' && expectsValue()) {
        token.kind = ScriptToken::Kind::Expression;
        m_place = endOfExpression(m_place);
    } else {
        token.kind = ScriptToken::Kind::Sign;
        passSign(token);
    }
    token.end = m_place;
    m_last = token;
    m_lastText = QStringView(m_text).sliced(token.start, token.end - token.start);
    m_afterDot = afterDot && token.kind == ScriptToken::Kind::Word;
    return token;
}

void ScriptScanner::skipBlanksAndComments()
{
    while (m_place < m_text.size()) {
        const QChar c = m_text[m_place];
        const bool isHashBang = m_place == 0 && c == u'#' && at(1) == u'!';
        if (isLineEnd(c)) {
            passLineEnd();
        } else if (c.isSpace() || c == u'\ufeff') {
            ++m_place;
        } else if ((c == u'/' && at(m_place + 1) == u'/') || isHashBang) {
            while (m_place < m_text.size() && !isLineEnd(m_text[m_place]))
                ++m_place;
        } else if (c == u'/' && at(m_place + 1) == u'*') {
            m_place += 2;
            while (m_place < m_text.size() && !(m_text[m_place] == u'*' && at(m_place + 1) == u'/')) {
                if (isLineEnd(m_text[m_place]))
                    passLineEnd();
                else
                    ++m_place;
            }
            m_place = std::min(m_place + 2, m_text.size());
        } else {
            return;
        }
    }
}

void ScriptScanner::passLineEnd()
{
    m_place += m_text[m_place] == u'\r' && at(m_place + 1) == u'\n' ? 2 : 1;
    ++m_line;
}

qsizetype ScriptScanner::endOfWord(qsizetype place) const
{
    while (place < m_text.size() && isWordPart(m_text[place])) {
        qsizetype end = place;
        if (m_text[place] == u'\\' && at(place + 1) == u'u' && at(place + 2) == u'{') {
            for (end = place + 3; isHexDigit(at(end));)
                ++end;
        }
        place = at(end) == u'}' ? end + 1 : place + 1;
    }
    return place;
}

qsizetype ScriptScanner::endOfNumber(qsizetype place) const
{
    const auto passDigits = [this](qsizetype from) {
        while (isDigit(at(from)) || at(from) == u'_')
            ++from;
        return from;
    };
    const QChar second = at(place + 1).toLower();
    if (at(place) == u'0' && (second == u'x' || second == u'b' || second == u'o'))
        return endOfWord(place + 1);
    place = passDigits(place);
    if (at(place) == u'.')
        place = passDigits(place + 1);
    if (at(place).toLower() == u'e') {
        const bool hasSign = at(place + 1) == u'+' || at(place + 1) == u'-';
        if (isDigit(at(place + (hasSign ? 2 : 1))))
            place = passDigits(place + (hasSign ? 2 : 1));
    }
    return endOfWord(place); // such as the n of a big integer
}

qsizetype ScriptScanner::endOfText(qsizetype place, bool& isClosed) const
{
    const QChar quote = m_text[place++];
    while (place < m_text.size()) {
        const QChar c = m_text[place];
        if (c == quote) {
            isClosed = true;
            return place + 1;
        }
        if (c == u'\\')
            place += at(place + 1) == u'\r' && at(place + 2) == u'\n' ? 3 : 2;
        else if (c == u'\n' || c == u'\r')
            return place; // was never closed
        else
            ++place;
    }
    return m_text.size();
}

qsizetype ScriptScanner::endOfExpression(qsizetype place) const
{
    bool inClass = false;
    qsizetype i = place + 1;
    for (; i < m_text.size() && !isLineEnd(m_text[i]); ++i) {
        const QChar c = m_text[i];
        if (c == u'\\' && i + 1 < m_text.size() && !isLineEnd(m_text[i + 1]))
            ++i;
        else if (c == u'[')
            inClass = true;
        else if (c == u']')
            inClass = false;
        else if (c == u'/' && !inClass)
            return endOfWord(i + 1); // with its flags
    }
    return i;
}

bool ScriptScanner::passTemplate()
{
    while (m_place < m_text.size()) {
        const QChar c = m_text[m_place];
        if (c == u'`') {
            ++m_place;
            return false;
        }
        if (c == u'$' && at(m_place + 1) == u'{') {
            m_place += 2;
            m_open.push_back({u'`', false});
            return true;
        }
        if (c == u'\\' && !isLineEnd(at(m_place + 1)))
            m_place = std::min(m_place + 2, m_text.size());
        else if (isLineEnd(c))
            passLineEnd();
        else
            ++m_place;
    }
    return false;
}

void ScriptScanner::passSign(ScriptToken& token)
{
    const QChar sign = m_text[m_place];
    const QChar second = at(m_place + 1);
    if (sign == u'(' || sign == u'[' || sign == u'{') {
        const bool isPlain = sign == u'(' ? !m_afterDot && isConditionWord(m_lastText) : beginsBlock();
        m_open.push_back({sign, isPlain});
        ++m_place;
        return;
    }
    if (sign == u')' || sign == u']' || sign == u'}') {
        ++m_place;
        if (m_open.empty()) {
            m_lastIsPlain = false;
            return;
        }
        const Bracket bracket = m_open.back();
        m_open.pop_back();
        m_lastIsPlain = bracket.isPlain;
        token.depth = static_cast<int>(m_open.size());
        if (sign == u'}' && bracket.open == u'`') {
            token.kind = ScriptToken::Kind::Template;
            passTemplate();
        }
        return;
    }
    const bool isPair
        = (sign == u'=' && second == u'>') || ((sign == u'+' || sign == u'-') && second == sign);
    m_place += isPair ? 2 : 1;
}

bool ScriptScanner::expectsValue() const
{
    switch (m_last.kind) {
    case ScriptToken::Kind::End:
        return true;
    case ScriptToken::Kind::Word:
        return !m_afterDot && isOperatorWord(m_lastText);
    case ScriptToken::Kind::Sign:
        if (m_lastText == u")" || m_lastText == u"}")
            return m_lastIsPlain;
        return m_lastText != u"]" && m_lastText != u"++" && m_lastText != u"--";
    default:
        return false;
    }
}

bool ScriptScanner::beginsBlock() const
{
    switch (m_last.kind) {
    case ScriptToken::Kind::End:
        return true;
    case ScriptToken::Kind::Word:
        return m_lastText == u"else" || m_lastText == u"do" || !isOperatorWord(m_lastText);
    case ScriptToken::Kind::Sign:
        return m_lastText == u";" || m_lastText == u")" || m_lastText == u"{" || m_lastText == u"}"
            || m_lastText == u"=>";
    default:
        return false;
    }
}

} // namespace lab
