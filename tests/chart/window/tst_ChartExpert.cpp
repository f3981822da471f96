#include "chart/window/ChartExpert.h"

#include "chart/ChartWindowFixture.h"
#include "chart/window/ChartComment.h"
#include "chart/window/OneClickPanel.h"
#include "experts/ExpertEngine.h"
#include "support/TestMain.h"

#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <array>
#include <cstddef>

using namespace Qt::StringLiterals;

/// An expert on a chart window: what it gets from the chart, and what becomes of what it wants.
class tst_ChartExpert final : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    std::unique_ptr<fixtures::ServedChart> m_served;
    QStringList m_log;
    QList<QJsonObject> m_orders;

    ChartWindow& window() { return *m_served->window; }
    QLabel& comment() { return *window().findChild<QLabel*>(u"chartComment"_s); }

    QString script(const QByteArray& text, const QString& name = u"Probe.js"_s)
    {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("The script could not be written");
        return file.fileName();
    }

    void tick(double bid = 1.1, double ask = 1.1002)
    {
        window().onPrices(fixtures::quote(u"EURUSD"_s, bid, ask));
    }

    /// Has the chart load old bars with these closes.
    void loadBars(const QList<double>& closes)
    {
        m_served->server.on(
            "GET", "/api/candles", StubAnswer::json(fixtures::candleBody(fixtures::candleRows(closes))));
        window().reload();
        QTRY_COMPARE(static_cast<qsizetype>(window().chart().candles().size()), closes.size());
    }

private Q_SLOTS:
    void init()
    {
        m_log.clear();
        m_orders.clear();
        m_served = std::make_unique<fixtures::ServedChart>();
        connect(&window(), &ChartWindow::expertLog, this,
            [this](const QString& source, const QString& text) { m_log.append(source + u": "_s + text); });
        connect(&window(), &ChartWindow::expertOrderRequested, this,
            [this](const QJsonObject& body) { m_orders.append(body); });
    }

    void anAttachedExpertIsInTheTitle()
    {
        const QSignalSpy titles(&window(), &ChartWindow::titleChanged);
        window().attachExpert(script("", u"My Robot.js"_s));
        QCOMPARE(window().expertName(), u"My Robot"_s);
        QCOMPARE(window().title(), u"EURUSD,M15  •  My Robot"_s);
        QCOMPARE(window().windowTitle(), window().title());
        QCOMPARE(titles.last().first().toString(), window().title());
        window().setTimeframe(u"1h"_s);
        QCOMPARE(window().title(), u"EURUSD,H1  •  My Robot"_s);
        window().detachExpert();
        QCOMPARE(window().title(), u"EURUSD,H1"_s);
        QCOMPARE(window().windowTitle(), window().title());
        QCOMPARE(titles.last().first().toString(), window().title());
        QCOMPARE(m_log, QStringList(u"My Robot: My Robot loaded"_s));
    }

    void aScriptThatFailsToLoadIsReportedOnceAndNotAttached()
    {
        window().attachExpert(script("var a = ;"));
        QCOMPARE(m_log.size(), 1);
        QVERIFY(m_log.first().startsWith("Probe: SyntaxError at line 1: "_L1));
        QCOMPARE(window().title(), u"EURUSD,M15"_s);
        m_log.clear();
        window().attachExpert(script("Comment('left'); function OnInit() { throw new Error('boom') }"));
        QVERIFY(comment().isHidden());
        QCOMPARE(comment().text(), QString());
        QCOMPARE(m_log, QStringList(u"Probe: OnInit: boom (line 1)"_s));
        QCOMPARE(window().expertName(), QString());
        m_log.clear();
        window().attachExpert(u"/nowhere/Gone.js"_s);
        QCOMPARE(m_log, QStringList(u"Gone: Cannot open /nowhere/Gone.js"_s));
    }

    void theExpertHearsOfAPriceAfterTheChart()
    {
        window().attachExpert(script("function OnTick() { Print(Bid, Ask, Close(0), Bars()) }"));
        m_log.clear();
        tick(1.5, 1.7);
        window().onPrices(fixtures::quote(u"USDJPY"_s, 1, 2));
        QCOMPARE(m_log, QStringList(u"Probe: 1.5 1.7 1.6 1"_s));
    }

    void theExpertHearsOfPricesAsTheyCome()
    {
        window().attachExpert(script("function OnTick() { Print(Bid, Ask, Bars()) }"));
        m_log.clear();
        tick(1.5, 0.0);
        tick(-2.0, -1.0);
        tick(0.0, 0.0);
        QCOMPARE(m_log, QStringList({u"Probe: 1.5 0 0"_s, u"Probe: -2 -1 1"_s, u"Probe: 0 0 1"_s}));
    }

    void theExpertHearsOfAPriceAfterTheButtons()
    {
        const QList<QPushButton*> buttons
            = window().findChild<OneClickPanel*>()->findChildren<QPushButton*>();
        QStringList texts;
        connect(&window(), &ChartWindow::expertCloseAllRequested, this, [&] {
            for (const QPushButton* button : buttons)
                texts.append(button->text());
        });
        tick(1.1, 1.2);
        window().attachExpert(script("function OnTick() { Trade.closeAll() }"));
        tick(1.5, 1.7);
        QVERIFY2(texts.contains(u"SELL\n1.50000"_s) && texts.contains(u"BUY\n1.70000"_s),
            qPrintable(texts.join(u';')));
    }

    void averagesFollowTheChartsBars()
    {
        window().attachExpert(script("function OnTick() { Print(Bars(), iMA(2, 0, 1), iRSI(2, 1)) }"));
        m_log.clear();
        loadBars({1, 2, 4});
        tick(); // into a new bar, which is not asked for
        // As many other bars: nothing but their prices tells that they are others.
        loadBars({8, 7, 9});
        tick();
        QCOMPARE(m_log, QStringList({u"Probe: 4 3 100"_s, u"Probe: 4 8 66.66666666666666"_s}));
    }

    void theExpertReadsTheChartsFigures()
    {
        window().attachExpert(
            script("function OnTick() { Print(Symbol(), Digits(), Account.balance, Account.equity) }"));
        m_log.clear();
        window().setAccountFigures(1000, 1010.5);
        window().setSymbolInfo(3, u"Euro"_s);
        tick();
        window().setSymbolInfo(5, u"Euro"_s);
        tick();
        QCOMPARE(m_log, QStringList({u"Probe: EURUSD 3 1000 1010.5"_s, u"Probe: EURUSD 5 1000 1010.5"_s}));
    }

    void theDigitsOfTheWindowAreTheExperts()
    {
        const fixtures::ServedChart yen(u"USDJPY"_s, 3);
        QStringList said;
        connect(yen.window.get(), &ChartWindow::expertLog, this,
            [&said](const QString&, const QString& text) { said.append(text); });
        yen.window->attachExpert(script("Print(Digits(), Point())"));
        QCOMPARE(said.first(), u"3 0.001"_s);
    }

    void onlyOpenPositionsOfTheSymbolAreCounted()
    {
        const auto trade = [](const char* symbol) { return records::position("x").symbol(symbol); };
        window().setTrades({trade("EURUSD"), trade("USDJPY"), trade("EURUSD"), 5}, {trade("EURUSD")});
        window().attachExpert(script("function OnTick() { Print(Positions.count()) }"));
        m_log.clear();
        tick();
        window().setTrades({}, {});
        tick();
        QCOMPARE(m_log, QStringList({u"Probe: 2"_s, u"Probe: 0"_s}));
    }

    void anOrderIsABodyWithoutTheAccount()
    {
        window().attachExpert(
            script("function OnTick() { Trade.buy(0.5, {sl: 1.05}); Trade.sell(1, {tp: 0.9, sl: -1}) }"));
        tick();
        QCOMPARE(m_orders.size(), 2);
        QCOMPARE(m_orders[0],
            QJsonObject({{u"symbol"_s, u"EURUSD"_s}, {u"type"_s, u"BUY"_s}, {u"orderKind"_s, u"MARKET"_s},
                {u"lotSize"_s, 0.5}, {u"stopLoss"_s, 1.05}}));
        QCOMPARE(m_orders[1],
            QJsonObject({{u"symbol"_s, u"EURUSD"_s}, {u"type"_s, u"SELL"_s}, {u"orderKind"_s, u"MARKET"_s},
                {u"lotSize"_s, 1.0}, {u"takeProfit"_s, 0.9}}));
    }

    void lotsAndLevelsThatAreNoneAreRefusedWithALine_data()
    {
        QTest::addColumn<QByteArray>("order");
        QTest::addColumn<QString>("line");
        const QString lots = u"Probe: Order ignored: the lots must be a number above 0, not %1"_s;
        const QString level = u"Probe: Order ignored: stop loss or take profit is not a number"_s;
        QTest::newRow("negative") << QByteArray("Trade.buy(-1)") << lots.arg(u"-1"_s);
        QTest::newRow("not a number") << QByteArray("__host.buy(NaN, 0, 0)") << lots.arg(u"nan"_s);
        QTest::newRow("zero") << QByteArray("__host.sell(0, 0, 0)") << lots.arg(u"0"_s);
        QTest::newRow("infinite") << QByteArray("Trade.sell(1 / 0)") << lots.arg(u"inf"_s);
        QTest::newRow("stop not a number") << QByteArray("Trade.buy(1, {slPoints: 'x'})") << level;
        QTest::newRow("target infinite") << QByteArray("Trade.buy(1, {tp: 1 / 0})") << level;
    }
    void lotsAndLevelsThatAreNoneAreRefusedWithALine()
    {
        QFETCH(QByteArray, order);
        QFETCH(QString, line);
        window().attachExpert(script("function OnTick() { " + order + " }"));
        m_log.clear();
        tick();
        QCOMPARE(m_log, QStringList(line));
        QVERIFY(m_orders.isEmpty());
        QCOMPARE(window().expertName(), u"Probe"_s);
    }

    void closingAllNamesTheSymbol()
    {
        const QSignalSpy asked(&window(), &ChartWindow::expertCloseAllRequested);
        window().attachExpert(script("function OnTick() { Trade.closeAll() }"));
        tick();
        QCOMPARE(asked.size(), 1);
        QCOMPARE(asked.first().first().toString(), u"EURUSD"_s);
    }

    void alertsAreMarked()
    {
        window().attachExpert(script("Alert('hot', 1)"));
        QCOMPARE(m_log.first(), u"Probe: ALERT: hot 1"_s);
    }

    void theCommentIsShownInTheCornerUntilItIsEmpty()
    {
        m_served->show();
        window().attachExpert(script("var n = 0; function OnTick() { Comment(n++ ? '' : '<b>a</b>\\nb') }"));
        QVERIFY(comment().isHidden());
        tick();
        QVERIFY(comment().isVisible());
        QCOMPARE(comment().text(), u"<b>a</b>\nb"_s);
        QCOMPARE(comment().textFormat(), Qt::PlainText);
        QVERIFY(comment().geometry().left() < 20 && comment().geometry().top() < 60);
        QVERIFY(comment().testAttribute(Qt::WA_TransparentForMouseEvents));
        tick();
        QVERIFY(comment().isHidden());
    }

    void theCommentLeavesRoomForTheOneClickPanel()
    {
        m_served->show();
        auto* panel = window().findChild<OneClickPanel*>();
        window().setOneClickTrading(true);
        window().attachExpert(script("Comment('status')"));
        QVERIFY(!panel->geometry().intersects(comment().geometry()));
        window().setOneClickTrading(false);
        const int high = comment().y();
        window().setOneClickTrading(true);
        QVERIFY(comment().y() > high);
        QVERIFY(!panel->geometry().intersects(comment().geometry()));
    }

    void aHugeCommentStaysWithinTheChart()
    {
        m_served->show();
        window().attachExpert(script("Comment('x'.repeat(3000) + '\\ny'.repeat(900))"));
        QVERIFY(window().chart().rect().contains(comment().geometry()));
        for (const QSize& size : {QSize(300, 220), QSize(700, 400)}) {
            window().resize(size);
            QTRY_COMPARE(window().chart().size(), size);
            QCOMPARE(comment().geometry().bottomRight(), window().chart().rect().bottomRight());
        }
    }

    void detachingTellsTheExpertAndClearsTheComment()
    {
        window().attachExpert(script("Comment('here'); function OnDeinit() { Print('bye') }"));
        QCOMPARE(comment().text(), u"here"_s);
        window().detachExpert();
        window().detachExpert();
        QCOMPARE(m_log.last(), u"Probe: bye"_s);
        QCOMPARE(m_log.count(u"Probe: bye"_s), 1);
        QVERIFY(comment().isHidden());
        m_log.clear();
        tick();
        QCOMPARE(m_log, QStringList());
    }

    void attachingAnotherDetachesTheFirst()
    {
        window().attachExpert(
            script("function OnDeinit() { Print('bye') } function OnTick() { Print('one') }", u"One.js"_s));
        window().attachExpert(script("function OnTick() { Print('two') }", u"Two.js"_s));
        tick();
        QCOMPARE(
            m_log, QStringList({u"One: One loaded"_s, u"One: bye"_s, u"Two: Two loaded"_s, u"Two: two"_s}));
    }

    void anExpertThatEndsWithAnErrorLeavesTitleAndComment()
    {
        window().attachExpert(script("Comment('fine'); function OnTick() { throw 5 }"));
        tick();
        QCOMPARE(window().title(), u"EURUSD,M15"_s);
        QCOMPARE(window().windowTitle(), window().title());
        QVERIFY(comment().isHidden());
        QCOMPARE(m_log.last(), u"Probe: Stopped after error in OnTick: OnTick: 5"_s);
    }

    void closingTheChartTellsTheExpert()
    {
        window().attachExpert(script("function OnDeinit() { Print('bye') }"));
        m_served->window.reset();
        QCOMPARE(m_log.last(), u"Probe: bye"_s);
    }

    void theChartMayCloseInMidTick_data()
    {
        QTest::addColumn<QByteArray>("hook");
        for (const char* hook : {"OnInit", "OnTick", "OnDeinit"})
            QTest::newRow(hook) << QByteArray(hook);
    }
    void theChartMayCloseInMidTick()
    {
        QFETCH(QByteArray, hook);
        ChartWindow* const chart = &window();
        connect(chart, &ChartWindow::expertCloseAllRequested, qApp, [this] { m_served->window.reset(); });
        chart->attachExpert(
            script("function " + hook + "() { Trade.closeAll(); Close(0); Bid; Comment('x'); throw 1 }"));
        if (hook == "OnTick")
            chart->onPrices(fixtures::quote(u"EURUSD"_s, 1.1, 1.2));
        else if (hook == "OnDeinit")
            chart->detachExpert();
        QVERIFY(!m_served->window);
    }

    void anExpertMayReplaceItselfInMidTick()
    {
        const QString second = script("function OnTick() { Print('second') }", u"Second.js"_s);
        connect(&window(), &ChartWindow::expertCloseAllRequested, this,
            [this, second] { window().attachExpert(second); });
        window().attachExpert(script("function OnTick() { Trade.closeAll(); Print('not heard') }"));
        m_log.clear();
        tick();
        tick();
        QCOMPARE(m_log, QStringList({u"Second: Second loaded"_s, u"Second: second"_s}));
        QCOMPARE(window().expertName(), u"Second"_s);
    }

    /// A new engine may come to lie where the old one was, and must not be taken for it. Blocks of its size
    /// that are freed in between make that likely.
    void anExpertMayReplaceItselfInEveryHook_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("file") << QByteArray("Trade.closeAll()");
        QTest::newRow("OnInit") << QByteArray("function OnInit() { Trade.closeAll() }");
        QTest::newRow("OnTick") << QByteArray("function OnTick() { Trade.closeAll() }");
        QTest::newRow("OnDeinit") << QByteArray("function OnDeinit() { Trade.closeAll() }");
    }
    void anExpertMayReplaceItselfInEveryHook()
    {
        QFETCH(QByteArray, text);
        const QString first = script(text, u"First.js"_s);
        const QString second = script("function OnTick() { Print('second') }", u"Second.js"_s);
        using Block = std::array<std::byte, sizeof(ExpertEngine)>;
        std::size_t times = 0;
        connect(&window(), &ChartWindow::expertCloseAllRequested, this, [this, second, &times] {
            std::vector<std::unique_ptr<Block>> blocks(++times % 8);
            for (auto& block : blocks)
                block = std::make_unique<Block>();
            window().detachExpert();
            blocks.clear();
            window().attachExpert(second);
        });
        while (times < 50) {
            window().attachExpert(first);
            tick();
            if (text.contains("OnDeinit"))
                window().detachExpert();
            m_log.clear();
            tick();
            QCOMPARE(m_log, QStringList(u"Second: second"_s));
            QCOMPARE(window().title(), u"EURUSD,M15  •  Second"_s);
        }
    }

    void anExpertAttachedByTheLastWordsOfAnotherStaysAndIsToldOfItsEnd()
    {
        const QString second = script("function OnDeinit() { Print('second ends') }", u"Second.js"_s);
        const QString third = script("", u"Third.js"_s);
        const auto replacing = connect(&window(), &ChartWindow::expertCloseAllRequested, this,
            [this, second] { window().attachExpert(second); });
        window().attachExpert(script("function OnDeinit() { Trade.closeAll() }"));
        window().attachExpert(third);
        disconnect(replacing);
        QCOMPARE(window().expertName(), u"Second"_s);
        window().attachExpert(third);
        QCOMPARE(m_log.count(u"Second: second ends"_s), 1);
        QCOMPARE(window().expertName(), u"Third"_s);
    }
};

TAVORAN_TEST(tst_ChartExpert)
#include "tst_ChartExpert.moc"
