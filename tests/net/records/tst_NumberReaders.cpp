#include "net/records/AccountRecord.h"
#include "net/records/CandleRecord.h"
#include "net/records/DrawingRecord.h"
#include "net/records/Quote.h"
#include "net/records/SymbolRecord.h"
#include "net/records/TradeRecord.h"
#include "support/TestMain.h"

#include <functional>

using namespace Qt::StringLiterals;

namespace {

using Reader = std::function<double(const QJsonObject& record)>;

} // namespace

Q_DECLARE_METATYPE(Reader)

/// Servers send a decimal as a number or, to keep its digits, as text. Whichever field it is in, it is read
/// alike.
class TestNumberReaders final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_number_may_come_as_text_data()
    {
        QTest::addColumn<Reader>("read");
        QTest::addColumn<QString>("key");
        const auto row = [](const char* name, const Reader& read, const QString& key) {
            QTest::newRow(name) << read << key;
        };
        row("balance", account::balance, u"balance"_s);
        row("open", candle::open, u"open"_s);
        row("high", candle::high, u"high"_s);
        row("low", candle::low, u"low"_s);
        row("close", candle::close, u"close"_s);
        row("volume", candle::volume, u"volume"_s);
        row("price of a drawing", drawing::price, u"price"_s);
        row(
            "bid", [](const QJsonObject& record) { return readQuote(record, 5).bid; }, u"bid"_s);
        row(
            "ask", [](const QJsonObject& record) { return readQuote(record, 5).ask; }, u"ask"_s);
        row("daily open", symbol::dailyOpen, u"dailyOpen"_s);
        row("contract size", symbol::contractSize, u"contractSize"_s);
        row("commission of a symbol", symbol::commission, u"commission"_s);
        row("swap long", symbol::swapLong, u"swapLong"_s);
        row("swap short", symbol::swapShort, u"swapShort"_s);
        row("lots", trade::lots, u"lotSize"_s);
        row("entry price", trade::entryPrice, u"entryPrice"_s);
        row("exit price", trade::exitPrice, u"exitPrice"_s);
        row("pending price", trade::pendingPrice, u"pendingPrice"_s);
        row(
            "stop loss", [](const QJsonObject& record) { return trade::stopLoss(record).value_or(0.0); },
            u"stopLoss"_s);
        row(
            "take profit", [](const QJsonObject& record) { return trade::takeProfit(record).value_or(0.0); },
            u"takeProfit"_s);
        row("profit", trade::profit, u"pnl"_s);
        row("margin", trade::margin, u"margin"_s);
        row("swap", trade::swap, u"swap"_s);
        row("commission of a trade", trade::commission, u"commission"_s);
    }
    void a_number_may_come_as_text()
    {
        QFETCH(Reader, read);
        QFETCH(QString, key);
        QCOMPARE(read({{key, 1.25}}), 1.25);
        QCOMPARE(read({{key, u"1.25"_s}}), 1.25);
        QCOMPARE(read({}), 0.0);
        for (const QJsonValue& none : {QJsonValue(), QJsonValue(true), QJsonValue(u"much"_s)})
            QCOMPARE(read({{key, none}}), 0.0);
    }
};

TAVORAN_TEST(TestNumberReaders)
#include "tst_NumberReaders.moc"
