#include "mainwindow/account/AccountBook.h"
#include "mainwindow/account/AccountLoader.h"
#include "net/records/TradeRecord.h"
#include "support/Records.h"
#include "support/ServedClient.h"
#include "support/TestMain.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

QJsonArray accounts()
{
    return {
        records::account("w").wallet(), records::account("a").balance(100), records::account("b").balance(7)};
}

records::Trade tradeOf(const char* id, int profit)
{
    return records::position(id).account("a").profit(profit).margin(10);
}

struct LoadingDesk final : fixtures::ServedClient {
    AccountBook book;
    AccountLoader loader{api, book};
    QSignalSpy tradesRead{&book, &AccountBook::tradesChanged};
    QSignalSpy historyRead{&loader, &AccountLoader::historyRead};
    QStringList journal;

    LoadingDesk()
    {
        QObject::connect(&loader, &AccountLoader::journalLine, &loader,
            [this](const QString& source, const QString& message) {
                journal.append(source + u": "_s + message);
            });
        server.on("GET", "/api/accounts", StubAnswer::list(accounts()));
        server.on("GET", "/api/trades/open?accountId=a", StubAnswer::list({tradeOf("t1", 5)}));
        server.on("GET", "/api/trades/pending?accountId=a", StubAnswer::list({records::pendingOrder("p1")}));
        server.on("GET", "/api/trades/history?accountId=a", StubAnswer::list({records::closedTrade("h1")}));
        for (const char* list : {"open", "pending", "history"})
            server.on("GET", QByteArray("/api/trades/") + list + "?accountId=b", StubAnswer::list({}));
    }

    void load()
    {
        loader.refreshAccounts();
        QTRY_COMPARE(tradesRead.count(), 1);
        QTRY_COMPARE(historyRead.count(), 1);
    }
    [[nodiscard]] QString openTrade() const { return trade::id(book.openTrades().at(0).toObject()); }
};

} // namespace

/// The loader and its book over a scripted server, without a window.
class tst_AccountLoader final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void reading_the_accounts_loads_the_preferred_ones_trades()
    {
        LoadingDesk desk;
        desk.load();
        QCOMPARE(desk.book.accounts(), accounts());
        QCOMPARE(desk.book.currentAccountId(), u"a"_s);
        QCOMPARE(desk.openTrade(), u"t1"_s);
        QCOMPARE(desk.book.pendingOrders().size(), 1);
        QCOMPARE(desk.historyRead.at(0).at(0).toJsonArray(), QJsonArray{records::closedTrade("h1")});
        const AccountSummary expected{100.0, 105.0, 10.0, 95.0, 5.0};
        QVERIFY(desk.book.summary() == expected);
        QCOMPARE(desk.journal, QStringList());
    }

    void without_an_account_nothing_is_asked_for()
    {
        LoadingDesk desk;
        desk.loader.refreshOpenTrades();
        desk.loader.refreshHistory();
        desk.settle();
        QCOMPARE(desk.asked(), 0);
    }

    void the_same_account_is_loaded_again_with_each_list()
    {
        LoadingDesk desk;
        desk.load();
        desk.loader.refreshAccounts();
        QTRY_COMPARE(desk.tradesRead.count(), 2);
        QTRY_COMPARE(desk.historyRead.count(), 2);
    }

    void an_empty_list_leaves_no_account()
    {
        LoadingDesk desk;
        desk.load();
        desk.server.on("GET", "/api/accounts", StubAnswer::list({}));
        desk.server.clearRequests();
        desk.loader.refreshAccounts();
        QTRY_COMPARE(desk.book.currentAccountId(), QString());
        QVERIFY(!desk.book.summary());
        desk.settle();
        QCOMPARE(desk.server.count("GET", "/api/trades/open"), 0);
    }

    void choosing_an_account_loads_its_lists_at_once()
    {
        LoadingDesk desk;
        desk.load();
        desk.loader.selectAccount(u"b"_s);
        QCOMPARE(desk.book.currentAccountId(), u"b"_s);
        QCOMPARE(desk.book.summary()->equity, 7.0);
        QTRY_COMPARE(desk.tradesRead.count(), 2);
        QTRY_COMPARE(desk.historyRead.count(), 2);
        QVERIFY(desk.book.openTrades().isEmpty());
    }

    void a_late_reply_for_another_account_changes_nothing()
    {
        LoadingDesk desk;
        desk.load();
        desk.server.on("GET", "/api/trades/open?accountId=b", StubAnswer::held());
        desk.server.on("GET", "/api/trades/history?accountId=b", StubAnswer::held());
        desk.loader.selectAccount(u"b"_s);
        QTRY_COMPARE(desk.server.heldCount(), 2);
        desk.loader.selectAccount(u"a"_s);
        QTRY_COMPARE(desk.tradesRead.count(), 2);
        QTRY_COMPARE(desk.historyRead.count(), 2);
        QVERIFY(
            desk.server.release(StubAnswer::list({tradeOf("late", 999)}), "/api/trades/open?accountId=b"));
        QVERIFY(
            desk.server.release(StubAnswer::list({tradeOf("late", 999)}), "/api/trades/history?accountId=b"));
        desk.settle();
        QCOMPARE(desk.openTrade(), u"t1"_s);
        QCOMPARE(desk.book.summary()->profit, 5.0);
        QCOMPARE(desk.historyRead.count(), 2);
        QCOMPARE(desk.server.count("GET", "/api/trades/pending?accountId=b"), 0);
        QCOMPARE(desk.journal, QStringList());
    }

    void a_late_list_of_another_accounts_orders_changes_nothing()
    {
        LoadingDesk desk;
        desk.load();
        desk.server.on("GET", "/api/trades/pending?accountId=b", StubAnswer::held());
        desk.loader.selectAccount(u"b"_s);
        QTRY_COMPARE(desk.server.heldCount(), 1);
        desk.loader.selectAccount(u"a"_s);
        QTRY_COMPARE(desk.tradesRead.count(), 2);
        QVERIFY(desk.server.release(StubAnswer::list({})));
        desk.settle();
        QCOMPARE(desk.tradesRead.count(), 2);
        QCOMPARE(desk.openTrade(), u"t1"_s);
    }

    void a_failed_read_keeps_what_is_known()
    {
        LoadingDesk desk;
        desk.load();
        desk.server.on("GET", "/api/accounts", StubAnswer::message(u"Out of order"_s, 500));
        desk.server.on("GET", "/api/trades/open?accountId=a", StubAnswer::message(u"Busy"_s, 503));
        desk.server.on("GET", "/api/trades/history?accountId=a", StubAnswer::message(u"No history"_s, 500));
        desk.loader.refreshAll();
        desk.settle();
        QTRY_COMPARE(desk.journal.size(), 2);
        QVERIFY(desk.journal.contains(u"Network: Failed to load accounts: Out of order"_s));
        QVERIFY(desk.journal.contains(u"Network: Failed to load trades: Busy"_s));
        QCOMPARE(desk.book.accounts().size(), 3);
        QCOMPARE(desk.openTrade(), u"t1"_s);
        QCOMPARE(desk.book.summary()->profit, 5.0);
        QCOMPARE(desk.historyRead.count(), 1);
    }

    void a_history_too_large_to_be_read_is_told_until_it_is_read_or_another_account_chosen()
    {
        const auto line = u"Network: Failed to load history: the reply is larger than 16 MiB"_s;
        const QByteArray path = "/api/trades/history?accountId=a";
        const StubAnswer tooLarge
            = StubAnswer::json('[' + QByteArray(qsizetype{17} * 1024 * 1024, ' ') + ']');
        LoadingDesk desk;
        const QSignalSpy givenUp(&desk.api, &ApiClient::replyTooLarge);
        int readings = 0;
        const auto readInVain = [&] {
            desk.loader.refreshHistory();
            ++readings;
            QTRY_COMPARE(givenUp.count(), readings);
        };
        desk.load();
        desk.server.on("GET", path, tooLarge);
        readInVain();
        QCOMPARE(desk.journal, QStringList{line});
        readInVain();
        desk.server.on("GET", path, StubAnswer::message(u"No history"_s, 500));
        desk.loader.refreshHistory();
        desk.settle();
        desk.server.on("GET", path, tooLarge);
        readInVain();
        QCOMPARE(desk.journal.count(line), 1);
        QCOMPARE(desk.historyRead.count(), 1);

        desk.server.on("GET", path, StubAnswer::list({}));
        desk.loader.refreshHistory();
        QTRY_COMPARE(desk.historyRead.count(), 2);
        desk.server.on("GET", path, tooLarge);
        readInVain();
        QCOMPARE(desk.journal.count(line), 2);

        desk.loader.selectAccount(u"b"_s);
        desk.loader.selectAccount(u"a"_s);
        QTRY_COMPARE(givenUp.count(), readings + 1);
        QCOMPARE(desk.journal, QStringList(3, line));
    }

    void pending_orders_that_cannot_be_read_count_as_none()
    {
        LoadingDesk desk;
        desk.load();
        desk.server.on("GET", "/api/trades/pending?accountId=a", StubAnswer::message(u"Busy"_s, 503));
        desk.loader.refreshOpenTrades();
        QTRY_COMPARE(desk.tradesRead.count(), 2);
        QVERIFY(desk.book.pendingOrders().isEmpty());
        QCOMPARE(desk.openTrade(), u"t1"_s);
        QCOMPARE(desk.journal, QStringList());
    }

    void a_profit_newer_than_the_reply_stays_known()
    {
        LoadingDesk desk;
        desk.load();
        desk.server.on("GET", "/api/trades/pending?accountId=a", StubAnswer::held());
        desk.loader.refreshOpenTrades();
        QTRY_COMPARE(desk.server.heldCount(), 1);
        desk.book.noteProfits({tradeOf("t1", 55)});
        QVERIFY(desk.server.release(StubAnswer::list({})));
        QTRY_COMPARE(desk.tradesRead.count(), 2);
        QCOMPARE(desk.book.profitOf(tradeOf("t1", 20)), 55.0);
        QCOMPARE(desk.book.summary()->profit, 55.0);
    }
};

TAVORAN_TEST(tst_AccountLoader)
#include "tst_AccountLoader.moc"
