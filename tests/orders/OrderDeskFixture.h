#pragma once

#include "DialogDesk.h"
#include "net/WsClient.h"
#include "orders/OrderDialog.h"
#include "orders/TickChartWidget.h"
#include "support/ParseJson.h"
#include "support/Records.h"

#include <QLabel>

/// What the tests of the order window share.
namespace fixtures {

using namespace Qt::StringLiterals;

inline const QByteArray placePath = "/api/trades/place";

inline QJsonArray someSymbols()
{
    return {records::symbol("EURUSD").described("Euro vs US Dollar").with("contractSize", "100000"),
        records::symbol("GOLD").described("Gold").digits(2).with("contractSize", 100),
        records::symbol("OIL").without("digits")};
}

/// The order window, with a feed that is driven by hand.
struct Desk final : DialogDesk<OrderDialog> {
    WsClient feed{TerminalSettings::instance()};

    explicit Desk(const QString& initialSymbol = {}, const QJsonArray& symbols = someSymbols())
    {
        show(new OrderDialog(api, feed, symbols, u"acc-1"_s, initialSymbol));
    }
    ~Desk() { delete dialog; } // before the feed that it listens to

    [[nodiscard]] QPushButton* sell() const { return part<QPushButton>("orderSell"); }
    [[nodiscard]] QPushButton* buy() const { return part<QPushButton>("orderBuy"); }
    [[nodiscard]] QLabel* error() const { return part<QLabel>("orderError"); }
    [[nodiscard]] QLabel* prices() const { return part<QLabel>("priceDisplay"); }
    [[nodiscard]] QLabel* units() const { return part<QLabel>("orderUnits"); }
    [[nodiscard]] TickChartWidget* ticks() const { return dialog->findChild<TickChartWidget*>(); }
    void quote(const QJsonObject& prices_) { Q_EMIT feed.pricesUpdated(prices_); }
    void quote(const char* symbol, const records::Value& bid, const records::Value& ask)
    {
        quote(records::prices({{symbol, bid, ask}}));
    }
    /// Sends an order to a server that does not answer.
    void buyAndWait()
    {
        server.on("POST", placePath, StubAnswer::held());
        QTest::mouseClick(buy(), Qt::LeftButton);
        QTRY_COMPARE(server.heldCount(), 1);
    }
    [[nodiscard]] QJsonObject sent() const { return server.last("POST", placePath).json(); }
};

} // namespace fixtures
