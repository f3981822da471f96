#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <list>
#include <string>
#include <thread>

/// Stands between terminal and platform on loopback, in a thread of its own: passes on what either says, cuts
/// the connections when it is told to, and floods the feed with price messages that the platform has sent a
/// moment ago.
class Relay final {
public:
    /// Passes on to this port of the machine; listens on a free one when it returns.
    explicit Relay(std::uint16_t platformPort);
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    [[nodiscard]] std::uint16_t port() const { return m_port; }

    /// Resets the feed, without another word.
    void cutFeed();
    /// Resets every connection, requests under way included.
    void cutAll();
    /// Sends so many price messages more, as fast as the terminal takes them.
    void flood(int messages);

    /// What is still to be sent of the floods is not sent.
    void endFlood() { m_owed = 0; }

    /// Price messages that are still to be sent.
    [[nodiscard]] long owed() const { return m_owed; }
    /// Messages that the platform has sent over the feed.
    [[nodiscard]] long passed() const { return m_passed; }
    /// Messages of the floods.
    [[nodiscard]] long flooded() const { return m_flooded; }
    /// Messages of either kind since the latest feed connection began.
    [[nodiscard]] long sentHere() const { return m_sentHere; }
    /// Feed connections that were reset.
    [[nodiscard]] long cuts() const { return m_cuts; }

private:
    struct Way {
        int client = -1;
        int platform = -1;
        std::string toClient;
        std::string toPlatform;
        std::string unread;  ///< of the platform, not yet a whole frame
        bool asked = false;  ///< the first bytes of the client have come
        bool feed = false;   ///< the client has asked for the feed
        bool framed = false; ///< the platform's answer to that is through, and frames follow
        bool platformLeft = false;
    };
    enum class Wish { None, Feed, All };

    void run();
    void wake() const;
    void accept();
    [[nodiscard]] bool serve(Way& way, short clientEvents, short platformEvents);
    [[nodiscard]] static bool take(int socket, std::string& into);
    [[nodiscard]] static bool give(int socket, std::string& from);
    void readFrames(Way& way);
    void addFlood(Way& way);
    void cut(Wish wish);

    std::uint16_t m_platformPort;
    std::uint16_t m_port = 0;
    int m_listener = -1;
    int m_bell = -1;
    std::list<Way> m_ways;
    std::deque<std::string> m_prices; ///< the latest frames with prices
    std::size_t m_nextPrice = 0;

    std::atomic<bool> m_leaving = false;
    std::atomic<Wish> m_wish = Wish::None;
    std::atomic<long> m_owed = 0;
    std::atomic<long> m_passed = 0;
    std::atomic<long> m_flooded = 0;
    std::atomic<long> m_sentHere = 0;
    std::atomic<long> m_cuts = 0;
    std::thread m_thread;
};
