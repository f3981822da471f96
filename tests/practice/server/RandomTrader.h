#pragma once

#include "practice/core/broker/Broker.h"
#include "practice/server/SecondBooks.h"

#include <random>
#include <vector>

namespace practice {

/// Wishes for trades at random, most of them sensible: what is to be sent, and what the books expect of it.
class RandomTrader final {
public:
    using Line = SecondBooks::Line;
    using Points = SecondBooks::Points;
    using Prices = std::vector<SecondBooks::Prices>;

    struct Change {
        Line line;
        ModifyRequest request;
    };

    /// `random` is shared with whoever else plays, so that one seed makes one session.
    RandomTrader(std::mt19937& random, const SecondBooks& books);

    /// 0 to `count` - 1.
    [[nodiscard]] int pick(int count);
    [[nodiscard]] double between(double low, double high);

    [[nodiscard]] Line newOrder(const Prices& prices);
    [[nodiscard]] PlaceRequest requestOf(const Line& order) const;
    /// Other levels for a live trade.
    [[nodiscard]] Change changeOf(Line line, const Prices& prices);

private:
    /// A price up to 0.8 % away, now and then on the wrong side.
    [[nodiscard]] Points away(Points from, int direction);
    [[nodiscard]] std::int64_t someLots(const Line& order);

    std::mt19937& m_random;
    const SecondBooks& m_books;
};

} // namespace practice
