#include "lab/run/ScriptInputs.h"

#include "lab/run/ScriptScanner.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

using namespace Qt::StringLiterals;

namespace lab {

namespace {

using Kind = ScriptInput::Kind;
using Token = ScriptToken;

/// An input and where its literal stands.
struct Place {
    ScriptInput input;
    qsizetype start = 0;
    qsizetype end = 0;
};

QStringView textOf(const QString& script, const Token& token)
{
    return QStringView(script).sliced(token.start, token.end - token.start);
}

/// Whether a word is a text on one line.
bool isText(const QString& script, const Token& token)
{
    const QStringView text = textOf(script, token);
    return token.kind == Token::Kind::Text && !token.isBroken && !text.contains(u'\n')
        && !text.contains(u'\r');
}

/// Whether a statement that ends without a semicolon ends before this word, which is on a later line: the
/// language goes on with whatever it can go on with.
bool beginsStatement(const QString& script, const Token& token)
{
    const QStringView text = textOf(script, token);
    switch (token.kind) {
    case Token::Kind::End:
    case Token::Kind::Number:
    case Token::Kind::Text:
        return true;
    case Token::Kind::Word:
        return text != u"in" && text != u"instanceof";
    case Token::Kind::Sign:
        return text == u"{" || text == u"}" || text == u"~" || text == u"++" || text == u"--";
    default:
        return false;
    }
}

QString commentAfter(const QString& script, qsizetype place)
{
    const auto isBlank = [](QChar c) { return c == u' ' || c == u'\t'; };
    while (place < script.size() && isBlank(script[place]))
        ++place;
    if (!QStringView(script).sliced(place).startsWith(u"//"))
        return {};
    qsizetype end = place += 2;
    while (end < script.size() && script[end] != u'\n' && script[end] != u'\r' && script[end] != u'\u2028'
        && script[end] != u'\u2029')
        ++end;
    return script.sliced(place, end - place).trimmed();
}

class InputReader final {
public:
    explicit InputReader(const QString& script)
        : m_script(script)
        , m_scanner(script)
        , m_token(m_scanner.next())
    {
    }

    std::vector<Place> read()
    {
        std::vector<Place> places;
        QStringView before;
        while (m_token.kind != Token::Kind::End) {
            const QStringView word = textOf(m_script, m_token);
            const bool declares = m_token.kind == Token::Kind::Word && m_token.depth == 0
                && (word == u"var" || word == u"let" || word == u"const") && before != u"."
                && !m_token.isGoverned;
            before = word;
            advance();
            if (!declares)
                continue;
            if (std::optional<Place> place = declaration())
                places.push_back(std::move(*place));
            before = {};
        }
        return places;
    }

private:
    void advance()
    {
        m_end = m_token.end;
        m_endLine = m_token.line;
        m_token = m_scanner.next();
    }

    bool isSign(QStringView sign) const
    {
        return m_token.kind == Token::Kind::Sign && textOf(m_script, m_token) == sign;
    }

    /// What follows var, as long as it is an input; stops at the first word that is not part of one.
    std::optional<Place> declaration()
    {
        if (m_token.kind != Token::Kind::Word)
            return std::nullopt;
        Place place;
        place.input.name = textOf(m_script, m_token).toString();
        place.input.line = m_token.line;
        advance();
        if (!isSign(u"="))
            return std::nullopt;
        advance();
        place.start = m_token.start;
        const int line = m_token.line;
        const bool hasSign = isSign(u"-") || isSign(u"+");
        if (hasSign)
            advance();
        if (m_token.line != line)
            return std::nullopt;
        const QStringView literal = textOf(m_script, m_token);
        if (m_token.kind == Token::Kind::Number && !literal.endsWith(u'n'))
            place.input.kind = Kind::Number;
        else if (isText(m_script, m_token) && !hasSign)
            place.input.kind = Kind::Text;
        else if (m_token.kind == Token::Kind::Word && (literal == u"true" || literal == u"false") && !hasSign)
            place.input.kind = Kind::Truth;
        else
            return std::nullopt;
        const qsizetype literalStart = m_token.start;
        advance();
        place.end = m_end;
        place.input.literal = m_script.sliced(place.start, place.end - place.start);
        // Between a sign and its number there may be a comment, of which a list had better show nothing.
        if (hasSign)
            place.input.literal = m_script[place.start] + m_script.sliced(literalStart, m_end - literalStart);
        if (isSign(u";")) {
            place.input.comment = commentAfter(m_script, m_token.end);
            return place;
        }
        if (m_token.kind != Token::Kind::End
            && (m_token.line == m_endLine || !beginsStatement(m_script, m_token)))
            return std::nullopt;
        place.input.comment = commentAfter(m_script, m_end);
        return place;
    }

    const QString& m_script;
    ScriptScanner m_scanner;
    Token m_token;
    qsizetype m_end = 0; ///< of the word before
    int m_endLine = 1;   ///< of that word
};

/// The names that a script gives a value other than where it declares them. A name that a function declares
/// for itself counts as well: nothing here knows where names are valid.
QSet<QString> changedNames(const QString& script)
{
    static const QRegularExpression assignment(
        u"=(?![=>])|(?:\\*\\*?|[-+/%^]|&&?|\\|\\|?|<<|>>>?|\\?\\?)="_s);
    const auto assigns = [&script](qsizetype place) {
        constexpr auto there = QRegularExpression::AnchorAtOffsetMatchOption;
        return assignment.match(script, place, QRegularExpression::NormalMatch, there).hasMatch();
    };
    ScriptScanner scanner(script);
    QSet<QString> names;
    QString name; // the word before, where that may be one
    QStringView before;
    int line = 0;
    bool isStepped = false; // by ++ or -- before it
    for (Token token = scanner.next(); token.kind != Token::Kind::End; token = scanner.next()) {
        const QStringView text = textOf(script, token);
        const bool isStep = text == u"++" || text == u"--";
        const bool isBehindName = !name.isEmpty() && (!isStep || token.line == line);
        if (isBehindName && token.kind == Token::Kind::Sign && (isStep || assigns(token.start)))
            names.insert(name);
        name.clear();
        const bool declares = before == u"var" || before == u"let" || before == u"const";
        if (token.kind == Token::Kind::Word && before != u"." && !declares)
            name = text.toString();
        if (isStepped && !name.isEmpty())
            names.insert(name);
        isStepped = isStep && !isBehindName;
        before = text;
        line = token.line;
    }
    return names;
}

std::vector<Place> placesOf(const QString& script)
{
    std::vector<Place> places = InputReader(script).read();
    QSet<QString> later;
    for (std::size_t i = places.size(); i-- > 0;) {
        if (later.contains(places[i].input.name))
            places[i].start = places[i].end;
        later.insert(places[i].input.name);
    }
    std::erase_if(places, [](const Place& place) { return place.start == place.end; });
    return places;
}

/// A number as the language writes one, with a sign or not.
bool isNumber(QStringView value)
{
    if (value.startsWith(u'-') || value.startsWith(u'+'))
        value = value.sliced(1);
    if (value.isEmpty() || value.contains(u'_'))
        return false;
    const QString text = value.toString();
    const Token token = ScriptScanner(text).next();
    if (token.kind != Token::Kind::Number || token.start != 0 || token.end != text.size())
        return false;
    bool ok = false;
    if (text.size() > 2 && text[0] == u'0' && text[1].isLetter() && text[1].toLower() != u'e') {
        const QChar base = text[1].toLower();
        // By hand: Qt would take a sign and blanks here too.
        const QStringView digits = QStringView(text).sliced(2);
        const int radix = base == u'x' ? 16 : base == u'b' ? 2 : base == u'o' ? 8 : 0;
        return radix != 0 && std::all_of(digits.begin(), digits.end(), [radix](QChar c) {
            bool isDigit = false;
            const int digit = QString(c).toInt(&isDigit, 16);
            return isDigit && digit < radix;
        });
    }
    // The language reads 010 as 8, which nobody means.
    if (text.size() > 1 && text[0] == u'0' && text[1].isDigit())
        return false;
    const double number = text.toDouble(&ok);
    return ok && std::isfinite(number);
}

/// A text between quotation marks, with everything that has to be escaped.
QString quoted(const QString& text, QChar quote)
{
    QString literal(quote);
    for (const QChar c : text) {
        if (c == quote || c == u'\\')
            literal += u'\\' + QString(c);
        else if (c == u'\n')
            literal += u"\\n"_s;
        else if (c.unicode() < 0x20 || c == u'\u2028' || c == u'\u2029')
            literal += u"\\u%1"_s.arg(c.unicode(), 4, 16, QLatin1Char('0'));
        else
            literal += c;
    }
    return literal + quote;
}

/// The value as the script shall write it; absent, with the reason, when it is of another kind.
std::optional<QString> literalOf(const ScriptInput& input, const QString& value, QString& error)
{
    const QString trimmed = value.trimmed();
    switch (input.kind) {
    case Kind::Number:
        if (isNumber(trimmed))
            return trimmed;
        error = u"%1 must be a number, such as %2, and not %3"_s.arg(
            input.name, input.literal, value.isEmpty() ? u"nothing"_s : value);
        return std::nullopt;
    case Kind::Truth:
        if (trimmed == u"true" || trimmed == u"false")
            return trimmed;
        error = u"%1 must be true or false, and not %2"_s.arg(
            input.name, value.isEmpty() ? u"nothing"_s : value);
        return std::nullopt;
    case Kind::Text:
        break;
    }
    const Token token = ScriptScanner(trimmed).next();
    const bool isLiteral = isText(trimmed, token) && token.end == trimmed.size();
    return isLiteral ? trimmed : quoted(value, input.literal.front());
}

} // namespace

QList<ScriptInput> inputsOf(const QString& script)
{
    const QSet<QString> changed = changedNames(script);
    QList<ScriptInput> inputs;
    for (Place& place : placesOf(script)) {
        place.input.isChanged = changed.contains(place.input.name);
        inputs.append(std::move(place.input));
    }
    return inputs;
}

QStringList settableNames(const QString& script)
{
    QStringList all;
    QStringList settable;
    for (const ScriptInput& input : inputsOf(script)) {
        all.append(input.name);
        if (!input.isChanged)
            settable.append(input.name);
    }
    return settable.isEmpty() ? all : settable;
}

std::optional<QString> withInputs(const QString& script, const InputValues& values, QString& error)
{
    const std::vector<Place> places = placesOf(script);
    std::vector<std::optional<QString>> literals(places.size());
    for (const auto& [name, value] : values) {
        const auto found = std::find_if(places.begin(), places.end(),
            [&name = name](const Place& place) { return place.input.name == name; });
        if (found == places.end()) {
            const QStringList known = settableNames(script);
            error = known.isEmpty()
                ? u"The script has no inputs, and so no %1"_s.arg(name)
                : u"The script has no input %1; it has %2"_s.arg(name, known.join(u", "_s));
            return std::nullopt;
        }
        std::optional<QString>& literal = literals[static_cast<std::size_t>(found - places.begin())];
        if (literal) {
            error = u"%1 is given twice"_s.arg(name);
            return std::nullopt;
        }
        literal = literalOf(found->input, value, error);
        if (!literal)
            return std::nullopt;
    }
    QString text = script;
    for (std::size_t i = places.size(); i-- > 0;) {
        if (literals[i])
            text.replace(places[i].start, places[i].end - places[i].start, *literals[i]);
    }
    return text;
}

ExpertScript withInputs(
    const ExpertScript& script, const std::vector<std::pair<std::string, std::string>>& inputs)
{
    InputValues values;
    for (const auto& [name, literal] : inputs)
        values.append({QString::fromStdString(name), QString::fromStdString(literal)});
    QString error;
    const std::optional<QString> text = withInputs(script.text, values, error);
    if (!text)
        throw std::invalid_argument(error.toStdString());
    return {script.name, script.fileName, *text};
}

} // namespace lab
