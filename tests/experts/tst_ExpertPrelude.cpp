#include "experts/ExpertFixture.h"
#include "support/TestMain.h"

#include <QJSEngine>

using namespace Qt::StringLiterals;

/// The functions that scripts are written with, through a whole engine.
class tst_ExpertPrelude final : public QObject {
    Q_OBJECT

    std::unique_ptr<ExpertFixture> m_fixture;

    ExpertFixture& chart() { return *m_fixture; }

    QString done(const QByteArray& script)
    {
        chart().done.clear();
        return chart().load(script) ? chart().done.join(u';') : u'!' + chart().error;
    }

private Q_SLOTS:
    void init()
    {
        m_fixture = std::make_unique<ExpertFixture>();
        chart().setCloses({1.0, 3.0, 2.0, 4.0});
    }

    void messagesJoinTheirArgumentsWithBlanks()
    {
        QCOMPARE(done("Print('a', 1, true)"), u"print a 1 true"_s);
        QCOMPARE(done("Print(null, undefined, [1, 2], {})"), u"print null undefined 1,2 [object Object]"_s);
        QCOMPARE(done("Print()"), u"print "_s);
        QCOMPARE(done("Comment('x', 2); Comment('')"), u"comment x 2;comment "_s);
        QCOMPARE(done("Alert('now', Symbol())"), u"alert now EURUSD"_s);
        QCOMPARE(done("Print(Symbol.iterator)"), u"print Symbol(Symbol.iterator)"_s);
    }

    void theSymbolAndPrices()
    {
        QCOMPARE(chart().printed("Print(Symbol(), Digits(), Point())"), u"EURUSD 5 0.00001"_s);
        QCOMPARE(chart().printed("Print(Bid, Ask)"), u"1.1 1.1002"_s);
    }

    void pricesAreFreshAndCannotBeWritten()
    {
        QVERIFY(chart().load("function OnTick() { Bid = 7; Print(Bid, Ask) }"));
        chart().bid = 1.5;
        chart().ask = 1.6;
        chart().engine->tick();
        QCOMPARE(chart().done, QStringList(u"print 1.5 1.6"_s));
        for (const QByteArray name : {"Bid", "Ask", "Account.balance", "Account.equity"})
            QVERIFY2(chart().printed("'use strict';\n" + name + " = 7").startsWith("!TypeError at line 2"_L1),
                name.constData());
    }

    void barsByShift()
    {
        QCOMPARE(chart().printed("Print(Bars(), Close(0), Close(1), Open(0).toFixed(1), High(3), Low(3))"),
            u"4 4 2 3.9 1.2 0.7"_s);
        QCOMPARE(
            chart().printed("Print(Close(), Close('1'), Close(1.9), Close(4), Close(-1), Close(Bars()))"),
            u"4 2 2 0 0 0"_s);
        // What is left out is 0, and what is too large for 32 bits wraps.
        QCOMPARE(chart().printed("var all = [Open, High, Low, Close], say = function(price) {"
                                 " return price.toFixed(1) };"
                                 "Print(all.map(function(f) { return say(f()) }));"
                                 "Print(all.map(function(f) { return say(f('x')) }));"
                                 "Print(all.map(function(f) { return say(f(4294967297)) }))"),
            u"3.9,4.2,3.7,4.0\n3.9,4.2,3.7,4.0\n1.9,2.2,1.7,2.0"_s);
    }

    void indicators()
    {
        QCOMPARE(chart().printed("Print(MODE_SMA, MODE_EMA, iMA(2, MODE_SMA, 0), iMA(2, MODE_EMA, 0))"),
            u"0 1 3 3"_s);
        QCOMPARE(chart().printed("Print(iMA(), iMA(5, 0, 0), iMA(4))"), u"0 0 2.5"_s);
        QCOMPARE(chart().printed("Print(iRSI(3, 0), iRSI(3, 1), iRSI())"), u"80 0 0"_s);
        QCOMPARE(chart().printed("Print(iRSI(2).toFixed(2), iRSI(1, 1), iRSI(1, '2'))"), u"66.67 0 100"_s);
        QCOMPARE(chart().printed("Print(iMA(4294967298, 4294967296, 4294967297),"
                                 " iRSI(4294967297, 4294967298), iMA('2', 'x', '1'))"),
            u"2.5 100 2.5"_s);
    }

    void theAccount()
    {
        QCOMPARE(
            chart().printed("Account.balance = 5; Print(Account.balance, Account.equity)"), u"1000 1010"_s);
    }

    void ordersWithoutArgumentsAreTheSmallest()
    {
        QCOMPARE(done("Trade.buy()"), u"order BUY 0.01 0 0"_s);
        QCOMPARE(done("Trade.sell(0); Trade.sell('x'); Trade.sell(NaN, null)"),
            u"order SELL 0.01 0 0;order SELL 0.01 0 0;order SELL 0.01 0 0"_s);
        QCOMPARE(done("Trade.buy('0.5')"), u"order BUY 0.5 0 0"_s);
        QCOMPARE(done("Trade.buy(-1)"), u"order BUY -1 0 0"_s);
    }

    void levelsAsPrices()
    {
        QCOMPARE(done("Trade.buy(1, {sl: 1.05, tp: '1.2'})"), u"order BUY 1 1.05 1.2"_s);
        QCOMPARE(done("Trade.sell(1, {sl: 1.2, slPoints: 100})"), u"order SELL 1 1.2 0"_s);
    }

    void theStopOfABuyIsMeasuredFromTheBidOnPurpose()
    {
        QCOMPARE(done("Trade.buy(1, {slPoints: 100, tpPoints: 200})"), u"order BUY 1 1.099 1.1022"_s);
    }

    void theStopOfASellIsMeasuredFromTheAskOnPurpose()
    {
        QCOMPARE(done("Trade.sell(1, {slPoints: 100, tpPoints: 200})"), u"order SELL 1 1.1012 1.098"_s);
        chart().ask = 1.1;
        QCOMPARE(done("Trade.sell(0.5, { slPoints: 200 })"), u"order SELL 0.5 1.102 0"_s);
    }

    void aStopOfZeroFallsThroughToThePointsOnPurpose()
    {
        QCOMPARE(done("Trade.buy(1, {sl: 0, slPoints: 100})"), u"order BUY 1 1.099 0"_s);
        QCOMPARE(done("Trade.buy(1, {tp: 0, tpPoints: 100})"), u"order BUY 1 0 1.1012"_s);
    }

    void theLevelHelpersAreThereToCall()
    {
        QCOMPARE(chart().printed(
                     "Print(_sl('BUY', {slPoints: 100}).toFixed(5), _tp('SELL', {tpPoints: 100}).toFixed(5),"
                     " _sl('BUY'), _tp('SELL', {}))"),
            u"1.09900 1.09900 0 0"_s);
    }

    void closingAndCounting()
    {
        chart().positions = 3;
        QCOMPARE(done("Trade.closeAll(); Print(Positions.count())"), u"closeAll;print 3"_s);
    }

    void theLanguagesOwnSymbolsStayInReach()
    {
        QCOMPARE(chart().printed("var o = {}; o[Symbol.iterator] = function*() { yield 1; yield 2 };"
                                 "var s = 0; for (var x of o) s += x; Print(s)"),
            u"3"_s);
    }

    void namesMayBeUsedForTheScriptsOwnThings()
    {
        QCOMPARE(chart().printed(
                     "var print = 1, close = 2, host = 3, global = 4, bid = 5, MODE_SMA = 6;"
                     "function Close(a) { return 'own' } var Trade = 7; Print(Close(0), Trade, MODE_SMA)"),
            u"own 7 6"_s);
    }

    void theScriptSeesNothingElseOfThePrelude()
    {
        const QString names = u"Object.getOwnPropertyNames(this).join(' ')"_s;
        QJSEngine bare;
        bare.installExtensions(QJSEngine::ConsoleExtension);
        const QStringList own = bare.evaluate(names).toString().split(u' ');
        QVERIFY(own.contains(u"Math"_s));
        QStringList seen = chart().printed("Print(" + names.toLatin1() + ")").split(u' ');
        seen.removeIf([&own](const QString& name) { return own.contains(name); });
        seen.sort();
        QCOMPARE(seen.join(u' '),
            u"Account Alert Ask Bars Bid Close Comment Digits EventKillTimer EventSetTimer High Low MODE_EMA "
            "MODE_SMA Open Point Positions Print Trade __host _sl _tp iMA iRSI"_s);
    }
};

TAVORAN_TEST(tst_ExpertPrelude)
#include "tst_ExpertPrelude.moc"
