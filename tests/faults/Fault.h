#pragma once

#include <QByteArray>
#include <QList>

#include <string>

/// What can go wrong between terminal and platform, and when.
namespace faults {

enum class Moment {
    Connecting, ///< before a byte of the request has reached the server
    Sending,    ///< half of the request has reached the server
    Headers,    ///< the server has carried the request out; the head of its answer is on its way
    Body,       ///< the head has arrived, the body is on its way
    Between,    ///< on a connection that has served before and lies idle, or as the next request comes
};

enum class Fault {
    Refused,    ///< the connection breaks, and nobody listens any more
    Reset,      ///< the connection is reset
    Cut,        ///< the connection ends in the orderly way
    BlackHole,  ///< nothing gets through any more, and nothing ends
    Drip,       ///< a byte at a time, and then no more
    Crumbs,     ///< a byte at a time, all of them
    TooLong,    ///< the answer names a length that it does not reach; in the head: a length that is no number
    TooShort,   ///< the answer is longer than it says; in the head: it says that it is empty
    Duplicate,  ///< it comes twice
    OutOfOrder, ///< its parts come in another order, or it comes before it is asked for
    /// A server between has an error of its own: 503 while connecting, 502 while the request is sent, 504 for
    /// the head, 500 for a body that does not come whole, 408 on an idle connection.
    ServerError,
    Html,      ///< somebody's web page in place of the answer
    Redirect,  ///< a way to another server
    BrokenTls, ///< bytes under encryption are not those that were sent
    GzipBomb,  ///< a small answer that unpacks to a huge one
};

[[nodiscard]] const QList<Moment>& allMoments();
[[nodiscard]] const QList<Fault>& allFaults();
[[nodiscard]] const char* nameOf(Moment moment);
[[nodiscard]] const char* nameOf(Fault fault);

/// Whether a request can meet this fault at this moment.
[[nodiscard]] bool canMeet(Fault fault, Moment moment);
/// The same of the feed.
[[nodiscard]] bool feedCanMeet(Fault fault, Moment moment);

/// Whether a request that begins so is for a feed.
[[nodiscard]] bool isOfTheFeed(const std::string& request);

/// What the line is to do to a request.
struct Plan final {
    Fault fault = Fault::Reset;
    Moment moment = Moment::Connecting;
    std::string target;    ///< how the request line begins
    std::string elsewhere; ///< where a redirect leads
};

} // namespace faults
