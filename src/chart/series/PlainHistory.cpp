#include "chart/series/PlainHistory.h"
#include "net/records/CandleRecord.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

using namespace Qt::StringLiterals;

namespace {

// A number beyond is damage, which is left to the general reader.
constexpr double largestMagnitude = 1e15;

/// Walks through JSON text. Each take...() skips blanks and moves behind what it has found; false when it
/// finds something else.
class Scanner final {
public:
    explicit Scanner(QByteArrayView text)
        : m_at(text.begin())
        , m_end(text.end())
    {
    }

    [[nodiscard]] bool nextIs(char c)
    {
        skipBlanks();
        return m_at != m_end && *m_at == c;
    }

    [[nodiscard]] bool atEnd()
    {
        skipBlanks();
        return m_at == m_end;
    }

    [[nodiscard]] bool take(char c)
    {
        if (!nextIs(c))
            return false;
        ++m_at;
        return true;
    }

    /// A text of printable ASCII without escapes.
    [[nodiscard]] bool takeText(QLatin1StringView& text)
    {
        if (!take('"'))
            return false;
        const char* const from = m_at;
        const char* const behind
            = std::find_if(from, m_end, [](char c) { return c == '"' || c == '\\' || c < ' ' || c > '~'; });
        if (behind == m_end || *behind != '"')
            return false;
        text = QLatin1StringView(from, behind - from);
        m_at = behind + 1;
        return true;
    }

    /// Whether a number begins here; blanks before it have been skipped.
    [[nodiscard]] bool takeNumber(double& number)
    {
        const char* const from = m_at;
        skipOne("-");
        const bool leadingZero = m_at != m_end && *m_at == '0';
        const char* const whole = m_at;
        if (!skipDigits() || (leadingZero && m_at - whole > 1))
            return false;
        if (skipOne(".") && !skipDigits())
            return false;
        if (skipOne("eE")) {
            skipOne("+-");
            if (!skipDigits())
                return false;
        }
        return isNumber(from, m_at, number);
    }

    /// Whether the text from `from` to `end` is one number of a sensible size.
    [[nodiscard]] static bool isNumber(const char* from, const char* end, double& number)
    {
        const auto [rest, error] = std::from_chars(from, end, number);
        return error == std::errc() && rest == end && std::abs(number) <= largestMagnitude;
    }

private:
    void skipBlanks()
    {
        while (m_at != m_end && (*m_at == ' ' || *m_at == '\n' || *m_at == '\r' || *m_at == '\t'))
            ++m_at;
    }

    bool skipOne(std::string_view characters)
    {
        if (m_at == m_end || characters.find(*m_at) == std::string_view::npos)
            return false;
        ++m_at;
        return true;
    }

    bool skipDigits()
    {
        const char* const from = m_at;
        m_at = std::find_if(m_at, m_end, [](char c) { return c < '0' || c > '9'; });
        return m_at != from;
    }

    const char* m_at;
    const char* m_end;
};

void setNumber(Candle& candle, QLatin1StringView key, double number)
{
    constexpr double most = std::numeric_limits<qint32>::max();
    if (key == candle::openField)
        candle.open = number;
    else if (key == candle::highField)
        candle.high = number;
    else if (key == candle::lowField)
        candle.low = number;
    else if (key == candle::closeField)
        candle.close = number;
    else if (key == candle::volumeField)
        candle.volume = static_cast<qint32>(std::clamp(number, 0.0, most));
}

bool takeField(Scanner& scanner, Candle& candle)
{
    QLatin1StringView key;
    if (!scanner.takeText(key) || !scanner.take(':'))
        return false;
    const bool isTime = key == candle::timeField;
    double number = 0.0;
    if (!scanner.nextIs('"')) {
        if (!scanner.takeNumber(number))
            return false;
        if (isTime)
            candle.time = 0; // times are texts
        else
            setNumber(candle, key, number);
        return true;
    }
    QLatin1StringView text;
    if (!scanner.takeText(text))
        return false;
    if (isTime) {
        candle.time = isoTimeMs(text);
        return true;
    }
    if (!Scanner::isNumber(text.begin(), text.end(), number))
        return false;
    setNumber(candle, key, number);
    return true;
}

bool takeCandle(Scanner& scanner, Candle& candle)
{
    if (!scanner.take('{'))
        return false;
    if (scanner.take('}'))
        return true;
    do {
        if (!takeField(scanner, candle))
            return false;
    } while (scanner.take(','));
    return scanner.take('}');
}

} // namespace

std::optional<HistoryReply> readPlainHistory(QByteArrayView json, const CandleRule& rule)
{
    Scanner scanner(json);
    if (!scanner.take('['))
        return std::nullopt;
    HistoryReply reply;
    reply.candles.reserve(static_cast<std::size_t>(std::count(json.begin(), json.end(), '{')));
    if (scanner.take(']'))
        return scanner.atEnd() ? std::optional(reply) : std::nullopt;
    do {
        Candle candle;
        if (!takeCandle(scanner, candle))
            return std::nullopt;
        ++reply.received;
        if (isSound(candle, rule))
            reply.candles.push_back(candle);
    } while (scanner.take(','));
    if (!scanner.take(']') || !scanner.atEnd())
        return std::nullopt;
    return reply;
}
