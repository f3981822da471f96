#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace practice {

/// The places for HTTP connections. Silent connections cost their sender nothing, so they must not keep
/// others out: when all places are taken, one whose request is not being carried out is cleared for the
/// newcomer.
class Connections final {
public:
    enum class Phase {
        Asking,    ///< silent, or a request's header is on its way
        Bringing,  ///< the body of a request is on its way
        Answering, ///< a request is being carried out; such a place is never cleared
        Replying,  ///< a reply is on its way, or a good-bye
    };

    /// One place, taken while this lives.
    class Place final {
    public:
        using Time = std::chrono::steady_clock::time_point;

        /// `client` is a name as SignInBrake::clientOf() gives it.
        explicit Place(std::string client);

        void enter(Phase phase, Time now = std::chrono::steady_clock::now());
        /// `end` ends the connection at once; a place without it is not cleared.
        void setEnd(std::function<void()> end) { m_end = std::move(end); }

        [[nodiscard]] const std::string& client() const { return m_client; }
        /// Whether it has ever brought a whole request.
        [[nodiscard]] bool hasAsked() const { return m_hasAsked; }

    private:
        friend class Connections;
        std::string m_client;
        std::function<void()> m_end;
        Phase m_phase = Phase::Asking;
        Time m_since;
        bool m_hasAsked = false;
        bool m_cleared = false;
    };

    explicit Connections(std::size_t most);

    /// A place for a newcomer; nothing while requests are being carried out in all of them. If need be, a
    /// place of the client with the most places is cleared: one that has never asked, else one that asks
    /// nothing now, else one that is bringing a body, else one that is taking its reply; of several, the one
    /// that has been so for longest.
    [[nodiscard]] std::shared_ptr<Place> admit(const std::string& client);

private:
    [[nodiscard]] bool clearOne();

    std::size_t m_most;
    std::vector<std::weak_ptr<Place>> m_places; ///< oldest first
};

} // namespace practice
