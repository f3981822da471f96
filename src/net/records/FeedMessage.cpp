#include "net/records/FeedMessage.h"

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

feed::Kind feed::kind(const QJsonObject& message)
{
    static constexpr std::array kinds{
        std::pair("price_update"_L1, Kind::Prices),
        std::pair("trades_update"_L1, Kind::Trades),
        std::pair("hello"_L1, Kind::Hello),
        std::pair("orders_changed"_L1, Kind::OrdersChanged),
        std::pair("account_update"_L1, Kind::AccountUpdate),
        std::pair("pong"_L1, Kind::Pong),
    };
    const QString type = message.value("type"_L1).toString();
    for (const auto& [text, kind] : kinds) {
        if (type == text)
            return kind;
    }
    return Kind::Unknown;
}

QJsonArray feed::symbols(const QJsonObject& hello)
{
    return hello.value("symbols"_L1).toArray();
}

QJsonObject feed::helloPrices(const QJsonObject& hello)
{
    return hello.value("prices"_L1).toObject();
}

QJsonObject feed::prices(const QJsonObject& message)
{
    return message.value("data"_L1).toObject();
}

QJsonArray feed::trades(const QJsonObject& message)
{
    return message.value("data"_L1).toArray();
}
