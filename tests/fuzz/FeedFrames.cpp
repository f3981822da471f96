#include "fuzz/FeedFrames.h"

#include "fuzz/Fuzz.h"

#include "practice/server/FeedRequest.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace fuzz {

namespace {

constexpr unsigned continuation = 0;
constexpr unsigned textFrame = 1;
constexpr unsigned binaryFrame = 2;
constexpr unsigned closeFrame = 8;
constexpr unsigned pingFrame = 9;
constexpr unsigned pongFrame = 10;
constexpr std::size_t longestControl = 125;

constexpr unsigned normalClosing = 1000;
constexpr unsigned protocolError = 1002;
constexpr unsigned noText = 1007;
constexpr unsigned tooLong = 1009;

/// What a frame begins with.
struct FrameHead {
    bool isLast = false;  ///< of its message
    bool isPlain = false; ///< no reserved bit
    bool isMasked = false;
    bool isShortest = false; ///< its length could not be told in fewer bytes
    unsigned kind = 0;
    std::uint64_t length = 0;
    std::array<std::uint8_t, 4> mask{};

    [[nodiscard]] bool isControl() const { return kind >= closeFrame; }
};

std::uint8_t byteAt(std::string_view bytes, std::size_t place)
{
    return static_cast<std::uint8_t>(bytes[place]);
}

/// Takes it off the bytes; nothing where they end within it.
std::optional<FrameHead> takeHead(std::string_view& bytes)
{
    if (bytes.size() < 2)
        return std::nullopt;
    FrameHead head;
    head.isLast = (byteAt(bytes, 0) & 0x80U) != 0;
    head.isPlain = (byteAt(bytes, 0) & 0x70U) == 0;
    head.kind = byteAt(bytes, 0) & 0x0fU;
    head.isMasked = (byteAt(bytes, 1) & 0x80U) != 0;
    head.length = byteAt(bytes, 1) & 0x7fU;
    const std::size_t more = head.length == 126 ? 2 : head.length == 127 ? 8 : 0;
    const std::size_t size = 2 + more + (head.isMasked ? 4 : 0);
    if (bytes.size() < size)
        return std::nullopt;
    if (more > 0)
        head.length = 0;
    for (std::size_t i = 0; i < more; ++i)
        head.length = head.length << 8U | byteAt(bytes, 2 + i);
    head.isShortest = more == 0 || head.length > (more == 2 ? longestControl : 0xffff);
    for (std::size_t i = 0; head.isMasked && i < 4; ++i)
        head.mask[i] = byteAt(bytes, 2 + more + i);
    bytes.remove_prefix(size);
    return head;
}

/// Takes what the bytes hold of a frame's content.
std::string takeContent(const FrameHead& head, std::string_view& bytes)
{
    std::string content(bytes.substr(0, head.length));
    bytes.remove_prefix(content.size());
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<char>(byteAt(content, i) ^ head.mask[i % 4]);
    return content;
}

enum class Utf8 { Whole, Cut, Broken };

Utf8 utf8Of(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();) {
        const unsigned first = byteAt(text, i++);
        if (first < 0x80)
            continue;
        if (first < 0xc2 || first > 0xf4)
            return Utf8::Broken;
        // Neither longer than it has to be, nor a surrogate, nor beyond the last character.
        unsigned least = first == 0xe0 ? 0xa0 : first == 0xf0 ? 0x90 : 0x80;
        unsigned most = first == 0xed ? 0x9f : first == 0xf4 ? 0x8f : 0xbf;
        for (int more = first < 0xe0 ? 1 : first < 0xf0 ? 2 : 3; more > 0; --more) {
            if (i == text.size())
                return Utf8::Cut;
            const unsigned next = byteAt(text, i++);
            if (next < least || next > most)
                return Utf8::Broken;
            least = 0x80;
            most = 0xbf;
        }
    }
    return Utf8::Whole;
}

/// What the platform has to make of a client's frames.
struct Client {
    enum class End {
        Gone,    ///< without a word
        Closed,  ///< by a close frame
        Wrong,   ///< by what breaks the rules
        Unclear, ///< what is wrong may be noticed before its message ends, or not
    };
    std::vector<std::string> pings;
    std::size_t asked = 0; ///< messages that ask for a pong
    End end = End::Gone;
    unsigned code = 0; ///< that the platform's close frame tells
};

/// Reads a client's frames up to the one that ends it.
class ClientReader final {
public:
    explicit ClientReader(std::string_view bytes)
        : m_bytes(bytes)
    {
    }

    Client read()
    {
        while (const auto head = takeHead(m_bytes)) {
            if (!(head->isControl() ? control(*head) : data(*head)))
                break;
        }
        return m_client;
    }

private:
    /// False: no more is read.
    bool ends(Client::End end, unsigned code = 0)
    {
        m_client.end = end;
        m_client.code = code;
        return false;
    }

    bool control(const FrameHead& head)
    {
        if (head.kind > pongFrame || !head.isLast || !head.isPlain || !head.isMasked
            || head.length > longestControl)
            return ends(Client::End::Wrong, protocolError);
        if (m_bytes.size() < head.length)
            return false;
        std::string content = takeContent(head, m_bytes);
        if (head.kind == closeFrame)
            return close(content);
        if (head.kind == pingFrame)
            m_client.pings.push_back(std::move(content));
        return true;
    }

    bool close(const std::string& content)
    {
        if (content.empty())
            return ends(Client::End::Closed, normalClosing);
        if (content.size() < 2)
            return ends(Client::End::Wrong, protocolError);
        const unsigned code = byteAt(content, 0) * 256U + byteAt(content, 1);
        const bool isKnown = (code >= 1000 && code <= 1003) || (code >= 1007 && code <= 1011);
        const bool isOwn = code >= 3000 && code <= 4999;
        const bool mayBeKnown = (code >= 1012 && code <= 1014) || code >= 5000;
        if (mayBeKnown)
            return ends(Client::End::Unclear);
        if ((!isKnown && !isOwn) || utf8Of(std::string_view(content).substr(2)) != Utf8::Whole)
            return ends(Client::End::Wrong, protocolError);
        return ends(Client::End::Closed, code);
    }

    bool data(const FrameHead& head)
    {
        const bool begins = head.kind != continuation;
        if (head.kind > binaryFrame || begins == m_isWithin || !head.isPlain || !head.isMasked
            || !head.isShortest)
            return ends(Client::End::Wrong, protocolError);
        if (begins) {
            m_message.clear();
            m_isText = head.kind == textFrame;
        }
        m_isWithin = !head.isLast;
        if (head.length > practice::longestFeedRequest - m_message.size())
            return ends(Client::End::Wrong, tooLong);
        const std::string content = takeContent(head, m_bytes);
        m_message += content;
        const bool isWhole = head.isLast && content.size() == head.length;
        const Utf8 utf8 = m_isText ? utf8Of(m_message) : Utf8::Whole;
        if (utf8 == Utf8::Broken || (isWhole && utf8 == Utf8::Cut)) {
            if (isWhole && !content.empty())
                return ends(Client::End::Wrong, noText);
            return ends(Client::End::Unclear);
        }
        if (isWhole && m_isText && practice::isFeedPing(m_message))
            ++m_client.asked;
        return true;
    }

    std::string_view m_bytes;
    Client m_client;
    std::string m_message;
    bool m_isWithin = false; ///< a message
    bool m_isText = false;
};

/// The platform's frames, sorted.
struct Told {
    std::vector<std::string> texts;
    std::vector<std::string> pongs;
    std::optional<std::string> closing;
};

Told framesOf(std::string_view bytes)
{
    Told told;
    while (!bytes.empty()) {
        demand(!told.closing, "nothing comes behind a close frame");
        const auto head = takeHead(bytes);
        demand(head && head->length <= bytes.size(), "the platform's frames are whole");
        demand(head->isPlain && head->isLast && head->isShortest,
            "a frame is one message, as short as it can be");
        demand(!head->isMasked, "a server masks nothing");
        demand(!head->isControl() || head->length <= longestControl, "a control frame is short");
        std::string content = takeContent(*head, bytes);
        switch (head->kind) {
        case textFrame:
            told.texts.push_back(std::move(content));
            break;
        case pongFrame:
            told.pongs.push_back(std::move(content));
            break;
        case closeFrame:
            told.closing = std::move(content);
            break;
        default:
            demand(false, "a frame is a text, a pong or a good-bye");
        }
    }
    return told;
}

void demandClosing(const Client& client, const std::optional<std::string>& closing)
{
    if (client.end == Client::End::Unclear)
        return;
    demand(closing.has_value() == (client.end != Client::End::Gone),
        "who has to be told good-bye is, and nobody else");
    if (!closing)
        return;
    demand(closing->size() >= 2, "a good-bye has a code");
    demand(byteAt(*closing, 0) * 256U + byteAt(*closing, 1) == client.code, "a good-bye tells why");
    demand(utf8Of(std::string_view(*closing).substr(2)) == Utf8::Whole, "a good-bye's words are text");
}

/// How many pongs there are among the messages.
std::size_t demandMessages(const std::vector<std::string>& texts)
{
    constexpr std::array<std::string_view, 4> others{
        "price_update", "trades_update", "orders_changed", "account_update"};
    std::size_t pongs = 0;
    bool isFirst = true;
    for (const std::string& text : texts) {
        demand(utf8Of(text) == Utf8::Whole, "a message is text");
        const auto message = nlohmann::json::parse(text, nullptr, false);
        demand(message.is_object() && message.contains("type") && message["type"].is_string(),
            "a message is an object of a type");
        const std::string type = message["type"];
        demand((type == "hello") == isFirst, "the hello comes first, and once");
        isFirst = false;
        const bool isPong = type == "pong";
        pongs += isPong ? 1 : 0;
        demand(type == "hello" || isPong || std::find(others.begin(), others.end(), type) != others.end(),
            "a message's type is known");
    }
    demand(!isFirst, "a feed begins with a hello");
    return pongs;
}

} // namespace

void demandFeed(std::string_view sent, std::string_view told)
{
    const Client client = ClientReader(sent).read();
    const Told frames = framesOf(told);
    const std::size_t pongs = demandMessages(frames.texts);
    const bool isClear = client.end != Client::End::Unclear;
    demand(pongs > 0 || client.asked == 0, "who asks for a pong gets one");
    demand(pongs <= client.asked || !isClear, "nobody gets a pong who has not asked");
    demand(frames.pongs.size() >= client.pings.size()
            && std::equal(client.pings.begin(), client.pings.end(), frames.pongs.begin()),
        "each ping has its pong");
    demand(frames.pongs.size() == client.pings.size() || !isClear, "a pong answers a ping");
    demandClosing(client, frames.closing);
}

} // namespace fuzz
