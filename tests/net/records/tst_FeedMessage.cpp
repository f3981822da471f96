#include "net/records/FeedMessage.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

using namespace fixtures;
using namespace Qt::StringLiterals;

class TestFeedMessage final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_message_is_known_by_its_type()
    {
        using feed::Kind;
        const auto kindOf = [](const char* type) {
            return feed::kind({{u"type"_s, QString::fromLatin1(type)}});
        };
        QCOMPARE(kindOf("hello"), Kind::Hello);
        QCOMPARE(kindOf("price_update"), Kind::Prices);
        QCOMPARE(kindOf("trades_update"), Kind::Trades);
        QCOMPARE(kindOf("orders_changed"), Kind::OrdersChanged);
        QCOMPARE(kindOf("account_update"), Kind::AccountUpdate);
        QCOMPARE(kindOf("pong"), Kind::Pong);
        QCOMPARE(kindOf("Pong"), Kind::Unknown);
        QCOMPARE(feed::kind({}), Kind::Unknown);
    }

    void what_it_brings_is_handed_on_as_it_came()
    {
        const QJsonObject prices = parse(R"({"EURUSD":{"bid":"1.1","ask":1.2}})");
        const QJsonArray rows{parse(R"({"id":"t1"})"), 7};
        QCOMPARE(feed::symbols({{u"symbols"_s, rows}}), rows);
        QCOMPARE(feed::helloPrices({{u"prices"_s, prices}}), prices);
        QCOMPARE(feed::prices({{u"data"_s, prices}}), prices);
        QCOMPARE(feed::trades({{u"data"_s, rows}}), rows);
        QCOMPARE(feed::trades({{u"data"_s, prices}}), QJsonArray());
    }

    void a_ping_is_one_object()
    {
        QCOMPARE(parse(feed::ping.latin1()), QJsonObject({{u"type"_s, u"ping"_s}}));
    }
};

TAVORAN_TEST(TestFeedMessage)
#include "tst_FeedMessage.moc"
