#include "mainwindow/account/AccountBook.h"
#include "net/records/PriceSnapshot.h"
#include "support/TestMain.h"

#include <QJsonDocument>

using namespace Qt::StringLiterals;

class tst_AccountBook final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void selectorTextNamesLabelStatusAndBalance_data();
    void selectorTextNamesLabelStatusAndBalance();
    void statusWithALineBreakStaysOneLine();
    void emptyListPrefersIndexZero();
    void currentAccountIsPreferredWhereverItMoved();
    void firstActiveAccountThatIsNoWalletIsPreferred();
    void withoutAnActiveAccountTheFirstIsPreferred();
    void ofEqualIdsTheLastIsSelected();
    void figuresAreSumsOverTheOpenTrades();
    void duplicateTradeCountsOneProfitButBothMargins();
    void summaryNeedsAListedAccount();
    void summaryFollowsNewProfits();
    void selectingForgetsProfitsAtOnce();
    void anotherAccountsMarginIsNotKept();
    void unreadableNumbersCountAsNothing();
    void symbolsAreFoundByName();
    void symbolsAreSortedByOrderThenName();
    void symbolNamesAreAlphabetical();
    void latestQuoteOfASymbolIsKnown();
    void aHellosPricesCountUntilTheNextSnapshot();
    void a_known_quote_is_judged_by_new_decimals();
};

namespace {

QJsonArray accounts(const char* text)
{
    return QJsonDocument::fromJson(text).array();
}

QJsonObject object(const char* text)
{
    return QJsonDocument::fromJson(text).object();
}

} // namespace

void tst_AccountBook::selectorTextNamesLabelStatusAndBalance_data()
{
    QTest::addColumn<QByteArray>("account");
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const char* account, const QString& text) {
        QTest::newRow(name) << QByteArray(account) << text;
    };
    row("wallet", R"({"isWallet":true,"type":"DEMO","status":"ACTIVE","balance":"1234567.891"})",
        u"Real  [ACTIVE]  1,234,567.89"_s);
    row("demo", R"({"type":"DEMO","status":"ACTIVE","balance":100000})", u"Demo  [ACTIVE]  100,000.00"_s);
    row("phase beyond the steps",
        R"({"Plan":{"name":"Pro","steps":2},"phase":3,"status":"ACTIVE","balance":1})",
        u"Pro — Challenge 2/2  [ACTIVE]  1.00"_s);
    row("one step", R"({"Plan":{"name":"Pro","steps":1},"status":"FAILED","balance":0})",
        u"Pro — Challenge  [FAILED]  0.00"_s);
    row("funded", R"({"Plan":{"name":"Pro","steps":2},"isFunded":true,"status":"ACTIVE","balance":-5.005})",
        u"Pro — Funded  [ACTIVE]  -5.00"_s);
    row("nothing known", "{}", u"Account — Challenge  []  0.00"_s);
    row("percent signs", R"({"Plan":{"name":"%2 %1"},"status":"%3","balance":7})",
        u"%2 %1 — Challenge  [%3]  7.00"_s);
}

void tst_AccountBook::selectorTextNamesLabelStatusAndBalance()
{
    QFETCH(QByteArray, account);
    QFETCH(QString, text);
    QCOMPARE(AccountBook::selectorText(object(account.constData())), text);
}

void tst_AccountBook::statusWithALineBreakStaysOneLine()
{
    QCOMPARE(AccountBook::selectorText(object(R"({"isWallet":true,"status":"A\nB","balance":1})")),
        u"Real  [A B]  1.00"_s);
}

void tst_AccountBook::emptyListPrefersIndexZero()
{
    AccountBook book;
    QCOMPARE(book.preferredIndex(), 0);
}

void tst_AccountBook::currentAccountIsPreferredWhereverItMoved()
{
    AccountBook book;
    book.selectAccount(u"b"_s);
    book.setAccounts(accounts(R"([{"id":"a","status":"ACTIVE"},{"id":"c","status":"ACTIVE"},{"id":"b"}])"));
    QCOMPARE(book.preferredIndex(), 2);
}

void tst_AccountBook::firstActiveAccountThatIsNoWalletIsPreferred()
{
    AccountBook book;
    book.selectAccount(u"gone"_s);
    book.setAccounts(accounts(R"([{"id":"w","isWallet":true,"status":"ACTIVE"},{"id":"f","status":"active"},
                                  {"id":"x","status":"ACTIVE"},{"id":"y","status":"ACTIVE"}])"));
    QCOMPARE(book.preferredIndex(), 2);
}

void tst_AccountBook::withoutAnActiveAccountTheFirstIsPreferred()
{
    AccountBook book;
    book.setAccounts(
        accounts(R"([{"id":"w","isWallet":true,"status":"ACTIVE"},{"id":"f","status":"FAILED"}])"));
    QCOMPARE(book.preferredIndex(), 0);
}

void tst_AccountBook::ofEqualIdsTheLastIsSelected()
{
    AccountBook book;
    book.selectAccount(u"a"_s);
    book.setAccounts(accounts(R"([{"id":"a"},{"id":"a"},{"id":"b","status":"ACTIVE"}])"));
    QCOMPARE(book.preferredIndex(), 1);
}

void tst_AccountBook::figuresAreSumsOverTheOpenTrades()
{
    AccountBook book;
    book.setAccounts(accounts(R"([{"id":"a","balance":"1000.50"}])"));
    book.selectAccount(u"a"_s);
    book.readFigures(
        accounts(R"([{"id":"1","pnl":"10.25","margin":100},{"id":"2","pnl":-5,"margin":"50.5"}])"));
    const AccountSummary expected{1000.5, 1005.75, 150.5, 855.25, 5.25};
    QVERIFY(book.summary() == expected);
}

void tst_AccountBook::duplicateTradeCountsOneProfitButBothMargins()
{
    AccountBook book;
    book.setAccounts(accounts(R"([{"id":"a","balance":100}])"));
    book.selectAccount(u"a"_s);
    book.readFigures(accounts(R"([{"id":"1","pnl":1,"margin":10},{"id":"1","pnl":2,"margin":10}])"));
    QCOMPARE(book.summary()->profit, 2.0);
    QCOMPARE(book.summary()->margin, 20.0);
}

void tst_AccountBook::summaryNeedsAListedAccount()
{
    AccountBook book;
    QVERIFY(!book.summary());
    book.setAccounts(accounts(R"([{"id":"a","balance":100}, 7, null])"));
    QVERIFY(!book.summary());
    book.selectAccount(u"b"_s);
    QVERIFY(!book.summary());
    book.selectAccount(u"a"_s);
    QVERIFY(book.summary());
}

void tst_AccountBook::summaryFollowsNewProfits()
{
    AccountBook book;
    book.setAccounts(accounts(R"([{"id":"a","balance":100}])"));
    book.selectAccount(u"a"_s);
    book.readFigures(accounts(R"([{"id":"1","pnl":1,"margin":10}])"));
    book.setTradePnl(u"1"_s, -4.0);
    book.setTradePnl(u"2"_s, 1.0);
    const AccountSummary expected{100.0, 97.0, 10.0, 87.0, -3.0};
    QVERIFY(book.summary() == expected);
}

void tst_AccountBook::selectingForgetsProfitsAtOnce()
{
    AccountBook book;
    book.setAccounts(accounts(R"([{"id":"a","balance":100}])"));
    book.selectAccount(u"a"_s);
    book.readFigures(accounts(R"([{"id":"1","pnl":1,"margin":10}])"));
    book.selectAccount(u"a"_s);
    QCOMPARE(book.summary()->profit, 0.0);
    QCOMPARE(book.summary()->margin, 10.0);
}

void tst_AccountBook::anotherAccountsMarginIsNotKept()
{
    AccountBook book;
    book.setAccounts(accounts(R"([{"id":"a","balance":100},{"id":"b","balance":200}])"));
    book.selectAccount(u"a"_s);
    book.readFigures(accounts(R"([{"id":"1","pnl":1,"margin":10}])"));
    book.selectAccount(u"b"_s);
    QCOMPARE(book.summary()->margin, 0.0);
}

void tst_AccountBook::unreadableNumbersCountAsNothing()
{
    AccountBook book;
    book.setAccounts(accounts(R"([{"id":"a","balance":"nan"}])"));
    book.selectAccount(u"a"_s);
    book.readFigures(
        accounts(R"([{"id":"1","pnl":"inf","margin":1e308},{"id":"2","pnl":{},"margin":true},5,null])"));
    QVERIFY(book.summary() == AccountSummary());
}

void tst_AccountBook::symbolsAreFoundByName()
{
    AccountBook book;
    book.setSymbols(accounts(R"([{"name":"A"},{"name":"B","digits":3},{"name":"C","digits":-4},
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

void tst_AccountBook::symbolsAreSortedByOrderThenName()
{
    AccountBook book;
    book.setSymbols(accounts(R"([{"name":"b","sortOrder":1},{"name":"Z"},{"name":"B","sortOrder":1},
                                 {"name":"x","sortOrder":-1}])"));
    QStringList names;
    const QJsonArray sorted = book.sortedSymbols();
    for (const QJsonValue record : sorted)
        names.append(record["name"_L1].toString());
    QCOMPARE(names, QStringList({u"x"_s, u"Z"_s, u"B"_s, u"b"_s}));
}

void tst_AccountBook::symbolNamesAreAlphabetical()
{
    AccountBook book;
    QCOMPARE(book.symbolNames(), QStringList());
    book.setSymbols(accounts(R"([{"name":"XAUUSD"},{"name":"EURUSD"},{},{"name":"GBPUSD"}])"));
    QCOMPARE(book.symbolNames(), (QStringList{u"EURUSD"_s, u"GBPUSD"_s, u"XAUUSD"_s}));
}

void tst_AccountBook::latestQuoteOfASymbolIsKnown()
{
    AccountBook book;
    book.notePrices(PriceSnapshot(object(R"({"A":{"bid":1},"B":{"bid":2}})")));
    book.notePrices(PriceSnapshot(object(R"({"A":{"bid":3}})")));
    QVERIFY((book.quote(u"A"_s) == Quote{3.0, 0.0}));
    QVERIFY((book.quote(u"B"_s) == Quote{2.0, 0.0}));
    QVERIFY(!book.quote(u"C"_s));
    QVERIFY(!book.tickedQuote(u"C"_s));
}

void tst_AccountBook::aHellosPricesCountUntilTheNextSnapshot()
{
    AccountBook book;
    book.notePrices(PriceSnapshot(object(R"({"A":{"bid":1},"B":{"bid":2}})")));
    book.noteHelloPrices(PriceSnapshot(object(R"({"A":{"bid":3},"C":{"ask":4}})")));
    QVERIFY((book.quote(u"A"_s) == Quote{3.0, 0.0}));
    QVERIFY((book.quote(u"B"_s) == Quote{2.0, 0.0}));
    QVERIFY((book.quote(u"C"_s) == Quote{0.0, 4.0}));
    QVERIFY((book.tickedQuote(u"A"_s) == Quote{1.0, 0.0}));
    QVERIFY(!book.tickedQuote(u"C"_s));
    book.notePrices(PriceSnapshot(object(R"({"A":{"bid":5}})")));
    QVERIFY((book.quote(u"A"_s) == Quote{5.0, 0.0}));
    QVERIFY((book.tickedQuote(u"A"_s) == Quote{5.0, 0.0}));
}

void tst_AccountBook::a_known_quote_is_judged_by_new_decimals()
{
    const auto tiny = [](const QString&) { return 9; };
    AccountBook book;
    book.notePrices(PriceSnapshot(object(R"({"A":{"bid":2e-9,"ask":1},"B":{"bid":2e-9}})"), tiny));
    book.noteHelloPrices(PriceSnapshot(object(R"({"A":{"bid":4e-9,"ask":2}})"), tiny));
    book.setSymbols(accounts(R"([{"name":"A","digits":2},{"name":"B","digits":9}])"));
    QVERIFY((book.quote(u"A"_s) == Quote{0.0, 2.0}));
    QVERIFY((book.tickedQuote(u"A"_s) == Quote{0.0, 1.0}));
    QVERIFY((book.quote(u"B"_s) == Quote{2e-9, 0.0}));
}

TAVORAN_TEST(tst_AccountBook)
#include "tst_AccountBook.moc"
