#pragma once

#include "app/base/TerminalSettings.h"
#include "app/ui/DecimalEdit.h"
#include "net/ApiClient.h"
#include "net/WsClient.h"
#include "orders/OrderDialog.h"
#include "orders/TickChartWidget.h"
#include "support/ParseJson.h"
#include "support/StubHttpServer.h"

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

/// What the tests of the order window share.
namespace fixtures {

using namespace Qt::StringLiterals;

inline const QByteArray placePath = "/api/trades/place";

inline QJsonArray someSymbols()
{
    return parseArray(R"([
        {"name":"EURUSD","description":"Euro vs US Dollar","digits":5,"contractSize":"100000"},
        {"name":"GOLD","description":"Gold","digits":2,"contractSize":100},
        {"name":"OIL"}])");
}

/// The order window on show, against a scripted server and a feed that is driven by hand.
struct Desk {
    StubHttpServer server;
    ApiClient api{TerminalSettings::instance()};
    WsClient feed{TerminalSettings::instance()};
    QPointer<OrderDialog> dialog;

    explicit Desk(const QString& initialSymbol = {}, const QJsonArray& symbols = someSymbols())
    {
        TerminalSettings::instance().setServerUrl(server.url());
        dialog = new OrderDialog(api, feed, symbols, u"acc-1"_s, initialSymbol);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->show();
    }
    ~Desk() { delete dialog; }
    Q_DISABLE_COPY_MOVE(Desk)

    template <typename T> [[nodiscard]] T* part(const QString& name) const
    {
        return dialog->findChild<T*>(name);
    }
    [[nodiscard]] QPushButton* sell() const { return part<QPushButton>(u"orderSell"_s); }
    [[nodiscard]] QPushButton* buy() const { return part<QPushButton>(u"orderBuy"_s); }
    [[nodiscard]] QLabel* error() const { return part<QLabel>(u"orderError"_s); }
    [[nodiscard]] QLabel* prices() const { return part<QLabel>(u"priceDisplay"_s); }
    [[nodiscard]] QLabel* units() const { return part<QLabel>(u"orderUnits"_s); }
    [[nodiscard]] DecimalEdit* edit(const QString& name) const { return part<DecimalEdit>(name); }
    [[nodiscard]] QComboBox* combo(const QString& name) const { return part<QComboBox>(name); }
    [[nodiscard]] TickChartWidget* ticks() const { return dialog->findChild<TickChartWidget*>(); }
    [[nodiscard]] QPushButton* button(const QString& text) const
    {
        for (QPushButton* candidate : dialog->findChildren<QPushButton*>()) {
            if (candidate->text() == text)
                return candidate;
        }
        return nullptr;
    }
    void click(const QString& text) const { QTest::mouseClick(button(text), Qt::LeftButton); }
    void type(const QString& name, const QString& text) const
    {
        DecimalEdit* field = edit(name);
        field->selectAll();
        QTest::keyClicks(field, text);
    }
    void quote(const QByteArray& prices_) { Q_EMIT feed.pricesUpdated(parse(prices_)); }
    [[nodiscard]] QJsonObject sent() const { return server.last("POST", placePath).json(); }
};

} // namespace fixtures
