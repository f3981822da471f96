#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>

namespace faults {

class Desk;

/// One kind of request, as the terminal makes it.
struct Request final {
    enum class Kind {
        Read,   ///< changes nothing
        Change, ///< changes something
        Order,  ///< changes a trade
    };

    QByteArray name;
    QByteArray verb;
    QByteArray path;
    Kind kind = Kind::Read;
    std::function<void(Desk&)> ask;
    QString success; ///< what is said when it went well, see successWith(); empty where nothing is
    QString failure; ///< how that begins which is said when it failed; empty where nothing is
    QString shows;   ///< the word in Desk::shown() whose number a read renews

    /// Whether it is not sent again, whatever happens; what only reads is.
    [[nodiscard]] bool isSentOnce() const;
    /// What is said when it went well and the platform has so many of everything.
    [[nodiscard]] QString successWith(int count) const;

    friend bool operator==(const Request& one, const Request& other) { return one.name == other.name; }
};

/// Every request that docs/openapi.yaml describes.
[[nodiscard]] const QList<Request>& allRequests();

} // namespace faults
