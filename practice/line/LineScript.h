#pragma once

#include <chrono>
#include <string>

namespace practice {

/// A direction on the line.
enum class Way { ToServer, ToClient };

/// How a connection ends.
enum class LineEnd {
    Close,   ///< in the orderly way, as if the server had nothing more to say
    Reset,   ///< with a reset to both ends
    Silence, ///< not at all: nothing gets through any more, until one end gives up
};

/// One connection, as its script sees it. Whatever is sent one way arrives in the order in which it was sent.
class LineCarrier {
public:
    /// Sends bytes on, after a delay, but not before what was sent this way earlier.
    virtual void send(Way way, std::string bytes, std::chrono::nanoseconds delay) = 0;
    /// Ends the connection. All that was sent to the client arrives before.
    virtual void end(LineEnd how) = 0;

protected:
    ~LineCarrier() = default;
};

/// What befalls one connection on its way.
class LineScript {
public:
    virtual ~LineScript() = default;
    /// The client has connected; the server is not asked yet, and is not if the script ends the connection.
    virtual void open(LineCarrier& carrier) = 0;
    /// Bytes have come from one end. What the script does not send on is lost.
    virtual void pass(Way way, std::string bytes, LineCarrier& carrier) = 0;
    /// One end has closed or reset the connection: for how long that is under way. It comes behind all that
    /// was sent before it.
    [[nodiscard]] virtual std::chrono::nanoseconds endDelay() { return {}; }
};

} // namespace practice
