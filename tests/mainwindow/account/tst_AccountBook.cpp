#include "mainwindow/account/AccountBook.h"
#include "net/records/PriceSnapshot.h"
#include "support/ParseJson.h"
#include "support/Records.h"
#include "support/TestMain.h"

#include <utility>

using namespace Qt::StringLiterals;
using fixtures::parse;
using fixtures::parseArray;

namespace {

QString bidOf(const PriceSnapshot& quotes)
{
    const PriceSnapshot::Entry& entry = quotes.entries().front();
    return u"%1=%2"_s.arg(entry.symbol).arg(entry.quote.bid);
}

/// Writes down what the book tells, and what the book holds at that moment.
struct Listener {
    AccountBook book;
    QStringList told;

    Listener()
    {
        const auto listen = [this](auto signal, auto text) {
            QObject::connect(&book, signal, &book, [this, text] { told.append(text()); });
        };
        listen(
            &AccountBook::accountsChanged, [this] { return u"accounts %1"_s.arg(book.accounts().size()); });
        listen(&AccountBook::currentAccountChanged,
            [this] { return u"current %1"_s.arg(book.currentAccountId()); });
        listen(&AccountBook::tradesChanged, [this] {
            return u"trades %1+%2"_s.arg(book.openTrades().size()).arg(book.pendingOrders().size());
        });
        listen(&AccountBook::symbolsChanged,
            [this] { return u"symbols %1"_s.arg(book.symbolsByName().size()); });
        listen(&AccountBook::summaryChanged,
            [this] { return book.summary() ? u"equity %1"_s.arg(book.summary()->equity) : u"no equity"_s; });
        QObject::connect(&book, &AccountBook::profitChanged, &book, [this](const QString& id, double profit) {
            QCOMPARE(book.profitOf(records::position(id)), profit);
            told.append(u"profit %1 %2"_s.arg(id).arg(profit));
        });
        QObject::connect(&book, &AccountBook::quotesChanged, &book, [this](const PriceSnapshot& quotes) {
            QCOMPARE(book.quote(u"A"_s)->bid, quotes.find(u"A"_s)->bid);
            told.append(u"quotes "_s + bidOf(quotes));
        });
        QObject::connect(&book, &AccountBook::ticked, &book, [this](const PriceSnapshot& quotes) {
            QCOMPARE(book.tickedQuote(u"A"_s)->bid, quotes.find(u"A"_s)->bid);
            told.append(u"ticked "_s + bidOf(quotes));
        });
    }
    Q_DISABLE_COPY_MOVE(Listener)

    [[nodiscard]] QStringList take() { return std::exchange(told, {}); }
};

} // namespace

class tst_AccountBook final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void emptyListPrefersIndexZero()
    {
        AccountBook book;
        QCOMPARE(book.preferredIndex(), 0);
    }

    void currentAccountIsPreferredWhereverItMoved()
    {
        AccountBook book;
        book.selectAccount(u"b"_s);
        book.setAccounts(
            {records::account("a"), records::account("c"), records::account("b").status("CLOSED")});
        QCOMPARE(book.preferredIndex(), 2);
    }

    void firstActiveAccountThatIsNoWalletIsPreferred()
    {
        AccountBook book;
        book.selectAccount(u"gone"_s);
        book.setAccounts({records::account("w").wallet(), records::account("f").status("active"),
            records::account("x"), records::account("y")});
        QCOMPARE(book.preferredIndex(), 2);
    }

    void withoutAnActiveAccountTheFirstIsPreferred()
    {
        AccountBook book;
        book.setAccounts({records::account("w").wallet(), records::account("f").status("FAILED")});
        QCOMPARE(book.preferredIndex(), 0);
    }

    void ofEqualIdsTheLastIsSelected()
    {
        AccountBook book;
        book.selectAccount(u"a"_s);
        book.setAccounts({records::account("a").status("CLOSED"), records::account("a").status("CLOSED"),
            records::account("b")});
        QCOMPARE(book.preferredIndex(), 1);
    }

    void figuresAreSumsOverTheOpenTrades()
    {
        AccountBook book;
        book.setAccounts({records::account("a").balance("1000.50")});
        book.selectAccount(u"a"_s);
        book.readFigures({records::position("1").profit("10.25").margin(100),
            records::position("2").profit(-5).margin("50.5")});
        const AccountSummary expected{1000.5, 1005.75, 150.5, 855.25, 5.25};
        QVERIFY(book.summary() == expected);
    }

    void duplicateTradeCountsOneProfitButBothMargins()
    {
        AccountBook book;
        book.setAccounts({records::account("a").balance(100)});
        book.selectAccount(u"a"_s);
        book.readFigures(
            {records::position("1").profit(1).margin(10), records::position("1").profit(2).margin(10)});
        QCOMPARE(book.summary()->profit, 2.0);
        QCOMPARE(book.summary()->margin, 20.0);
    }

    void summaryNeedsAListedAccount()
    {
        AccountBook book;
        QVERIFY(!book.summary());
        book.setAccounts(parseArray(R"([{"id":"a","balance":100}, 7, null])"));
        QVERIFY(!book.summary());
        book.selectAccount(u"b"_s);
        QVERIFY(!book.summary());
        book.selectAccount(u"a"_s);
        QVERIFY(book.summary());
    }

    void summaryFollowsNewProfits()
    {
        AccountBook book;
        book.setAccounts({records::account("a").balance(100)});
        book.selectAccount(u"a"_s);
        book.readFigures({records::position("1").profit(1).margin(10)});
        book.noteProfits(
            {records::position("1").account("a").profit(-4), records::position("2").account("a").profit(1)});
        const AccountSummary expected{100.0, 97.0, 10.0, 87.0, -3.0};
        QVERIFY(book.summary() == expected);
    }

    void the_newest_profit_of_a_trade_is_the_one_that_was_noted_last()
    {
        AccountBook book;
        book.setAccounts({records::account("a").balance(100)});
        book.selectAccount(u"a"_s);
        const QJsonObject trade = records::position("1").account("a").profit(10);
        QCOMPARE(book.profitOf(trade), 10.0); // nothing is known of it yet
        book.readFigures({trade});
        QCOMPARE(book.profitOf(trade), 10.0);
        book.noteProfits({records::position("1").account("a").profit(0)});
        QCOMPARE(book.profitOf(trade), 0.0);
        QCOMPARE(book.profitOf(records::position("2").profit(-5)), -5.0);
        // A list that was read later is newer than what the feed has brought.
        book.readFigures({trade});
        QCOMPARE(book.profitOf(trade), 10.0);
    }

    void selectingForgetsProfitsAtOnce()
    {
        AccountBook book;
        book.setAccounts({records::account("a").balance(100)});
        book.selectAccount(u"a"_s);
        book.readFigures({records::position("1").profit(1).margin(10)});
        book.selectAccount(u"a"_s);
        QCOMPARE(book.summary()->profit, 0.0);
        QCOMPARE(book.summary()->margin, 10.0);
    }

    void anotherAccountsMarginIsNotKept()
    {
        AccountBook book;
        book.setAccounts({records::account("a").balance(100), records::account("b").balance(200)});
        book.selectAccount(u"a"_s);
        book.readFigures({records::position("1").profit(1).margin(10)});
        book.selectAccount(u"b"_s);
        QCOMPARE(book.summary()->margin, 0.0);
    }

    void unreadableNumbersCountAsNothing()
    {
        AccountBook book;
        book.setAccounts({records::account("a").balance("nan")});
        book.selectAccount(u"a"_s);
        book.readFigures(parseArray(
            R"([{"id":"1","pnl":"inf","margin":1e308},{"id":"2","pnl":{},"margin":true},5,null])"));
        QVERIFY(book.summary() == AccountSummary());
    }

    void symbolsAreFoundByName()
    {
        AccountBook book;
        book.setSymbols(parseArray(R"([{"name":"A"},{"name":"B","digits":3},{"name":"C","digits":-4},
        {"name":"D","digits":"2"},{"name":"E","digits":4000000000},{"name":"B","digits":2},{"digits":1},{"name":"F","digits":12},null])"));
        QCOMPARE(book.symbolsByName().size(), 6);
        QCOMPARE(book.digits().value(u"F"_s), 12);
        QCOMPARE(book.digits().value(u"A"_s), 5);
        QCOMPARE(book.digits().value(u"B"_s), 2);
        QCOMPARE(book.digits().value(u"C"_s), 0);
        QCOMPARE(book.digits().value(u"D"_s), 5);
        QCOMPARE(book.digits().value(u"E"_s), 5);
        book.setSymbols({});
        QVERIFY(book.symbolsByName().isEmpty());
        QVERIFY(book.digits().isEmpty());
    }

    void symbolsAreSortedByOrderThenName()
    {
        AccountBook book;
        book.setSymbols({records::symbol("b").rank(1), records::symbol("Z"), records::symbol("B").rank(1),
            records::symbol("x").rank(-1)});
        QStringList names;
        const QJsonArray sorted = book.sortedSymbols();
        for (const QJsonValue record : sorted)
            names.append(record["name"_L1].toString());
        QCOMPARE(names, QStringList({u"x"_s, u"Z"_s, u"B"_s, u"b"_s}));
    }

    void symbolNamesAreAlphabetical()
    {
        AccountBook book;
        QCOMPARE(book.symbolNames(), QStringList());
        book.setSymbols(parseArray(R"([{"name":"XAUUSD"},{"name":"EURUSD"},{},{"name":"GBPUSD"}])"));
        QCOMPARE(book.symbolNames(), (QStringList{u"EURUSD"_s, u"GBPUSD"_s, u"XAUUSD"_s}));
    }

    void latestQuoteOfASymbolIsKnown()
    {
        AccountBook book;
        book.notePrices(records::prices({{"A", 1}, {"B", 2}}));
        book.notePrices(records::prices({{"A", 3}}));
        QVERIFY((book.quote(u"A"_s) == Quote{3.0, 0.0}));
        QVERIFY((book.quote(u"B"_s) == Quote{2.0, 0.0}));
        QVERIFY(!book.quote(u"C"_s));
        QVERIFY(!book.tickedQuote(u"C"_s));
    }

    void aHellosPricesCountUntilTheNextSnapshot()
    {
        AccountBook book;
        book.notePrices(records::prices({{"A", 1}, {"B", 2}}));
        book.noteHelloPrices(parse(R"({"A":{"bid":3},"C":{"ask":4}})"));
        QVERIFY((book.quote(u"A"_s) == Quote{3.0, 0.0}));
        QVERIFY((book.quote(u"B"_s) == Quote{2.0, 0.0}));
        QVERIFY((book.quote(u"C"_s) == Quote{0.0, 4.0}));
        QVERIFY((book.tickedQuote(u"A"_s) == Quote{1.0, 0.0}));
        QVERIFY(!book.tickedQuote(u"C"_s));
        book.notePrices(records::prices({{"A", 5}}));
        QVERIFY((book.quote(u"A"_s) == Quote{5.0, 0.0}));
        QVERIFY((book.tickedQuote(u"A"_s) == Quote{5.0, 0.0}));
    }

    void a_known_quote_is_judged_by_new_decimals()
    {
        AccountBook book;
        book.setSymbols({records::symbol("A").digits(9), records::symbol("B").digits(9)});
        book.notePrices(records::prices({{"A", 2e-9, 1}, {"B", 2e-9}}));
        book.noteHelloPrices(records::prices({{"A", 4e-9, 2}}));
        book.setSymbols({records::symbol("A").digits(2), records::symbol("B").digits(9)});
        QVERIFY((book.quote(u"A"_s) == Quote{0.0, 2.0}));
        QVERIFY((book.tickedQuote(u"A"_s) == Quote{0.0, 1.0}));
        QVERIFY((book.quote(u"B"_s) == Quote{2e-9, 0.0}));
    }

    void each_symbols_decimals_say_what_is_a_price()
    {
        AccountBook book;
        book.setSymbols({records::symbol("A").digits(9)});
        book.notePrices(records::prices({{"A", 2e-9}, {"B", 2e-9}}));
        QVERIFY((book.quote(u"A"_s) == Quote{2e-9, 0.0}));
        QVERIFY((book.quote(u"B"_s) == Quote{}));
    }

    void whoever_hears_of_a_change_finds_it_in_the_book()
    {
        Listener listener;
        AccountBook& book = listener.book;
        book.setAccounts({records::account("a").balance(100), records::account("b").balance(7)});
        QCOMPARE(listener.take(), QStringList{u"accounts 2"_s});
        book.selectAccount(u"a"_s);
        QCOMPARE(listener.take(), QStringList({u"current a"_s, u"equity 100"_s}));
        book.readFigures({records::position("1").profit(5).margin(10)});
        QCOMPARE(listener.take(), QStringList{u"equity 105"_s});
        book.setTrades({records::position("1")}, {records::position("2"), records::position("3")});
        QCOMPARE(listener.take(), QStringList{u"trades 1+2"_s});
        book.noteProfits(
            {records::position("1").account("a").profit("6"), records::position("9").account("a").profit(1)});
        QCOMPARE(listener.take(), QStringList({u"profit 1 6"_s, u"profit 9 1"_s, u"equity 107"_s}));
        book.setSymbols({records::symbol("A")});
        QCOMPARE(listener.take(), QStringList{u"symbols 1"_s});
        book.noteHelloPrices(records::prices({{"A", 1}}));
        QCOMPARE(listener.take(), QStringList{u"quotes A=1"_s});
        book.notePrices(records::prices({{"A", 2}}));
        QCOMPARE(listener.take(), QStringList({u"quotes A=2"_s, u"ticked A=2"_s}));
        book.selectAccount(u"b"_s);
        QCOMPARE(listener.take(), QStringList({u"current b"_s, u"equity 7"_s}));
        book.setAccounts({});
        QCOMPARE(listener.take(), QStringList({u"accounts 0"_s, u"no equity"_s}));
    }

    void whoever_hears_of_an_account_finds_its_summary()
    {
        AccountBook book;
        QList<double> balances;
        const auto noteBalance = [&] { balances.append(book.summary().value_or(AccountSummary()).balance); };
        connect(&book, &AccountBook::accountsChanged, this, noteBalance);
        connect(&book, &AccountBook::currentAccountChanged, this, noteBalance);
        book.setAccounts({records::account("a").balance(100), records::account("b").balance(7)});
        book.selectAccount(u"a"_s);
        book.selectAccount(u"b"_s);
        book.setAccounts({records::account("b").balance(8)});
        QCOMPARE(balances, QList<double>({0.0, 100.0, 7.0, 8.0}));
    }

    void what_has_not_changed_is_not_told()
    {
        Listener listener;
        AccountBook& book = listener.book;
        book.setAccounts({records::account("a").balance(100)});
        book.selectAccount(u"a"_s);
        book.readFigures({records::position("1").profit(0).margin(0)});
        listener.told.clear();
        book.selectAccount(u"a"_s);
        book.readFigures({records::position("1").profit(0).margin(0)});
        book.noteProfits(parseArray(R"([{"id":"1","accountId":"b","pnl":6},{"id":"1","pnl":6},5,null])"));
        QCOMPARE(listener.take(), QStringList());
        // A list that was read again is told, whatever it holds: what is shown starts from it anew.
        book.setAccounts({records::account("a").balance(100)});
        book.setTrades({}, {});
        book.setSymbols({});
        QCOMPARE(listener.take(), QStringList({u"accounts 1"_s, u"trades 0+0"_s, u"symbols 0"_s}));
    }

    void without_an_account_no_profit_is_anyones()
    {
        Listener listener;
        listener.book.noteProfits({records::position("1").account("").profit(6),
            records::position("2").without("accountId").profit(6)});
        QCOMPARE(listener.take(), QStringList());
        QCOMPARE(listener.book.profitOf(records::position("1").profit(5)), 5.0);
        QCOMPARE(listener.book.profitOf(records::position("2").profit(5)), 5.0);
    }

    void the_preferred_account_is_known_by_its_id()
    {
        AccountBook book;
        QCOMPARE(book.preferredAccountId(), QString());
        book.setAccounts({records::account("w").wallet(), records::account("x")});
        QCOMPARE(book.preferredAccountId(), u"x"_s);
    }
};

TAVORAN_TEST(tst_AccountBook)
#include "tst_AccountBook.moc"
