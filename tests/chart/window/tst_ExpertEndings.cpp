#include "chart/ChartWindowFixture.h"
#include "chart/window/ChartExpert.h"
#include "support/TestMain.h"
#include "support/Timers.h"

#include <QTemporaryDir>

#include <array>
#include <functional>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// Whatever is heard of an expert, in order. At one of these effects, and while it is still being told,
/// something is done that ends the expert.
class Effects final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Effects)

public:
    explicit Effects(qsizetype fatal)
        : m_fatal(fatal)
    {
    }

    void hear(ChartExpert& expert)
    {
        connect(&expert, &ChartExpert::log, this,
            [this](const QString& source, const QString& text) { note(source + u": "_s + text); });
        connect(&expert, &ChartExpert::orderRequested, this, [this] { note(u"order"_s); });
        connect(&expert, &ChartExpert::closeAllRequested, this, [this] { note(u"close all"_s); });
        connect(&expert, &ChartExpert::commentChanged, this,
            [this](const QString& text) { note(text.isEmpty() ? u"no comment"_s : u"comment "_s + text); });
        connect(&expert, &ChartExpert::nameChanged, this, [this] { note(u"name"_s); });
    }

    /// What the script itself has wanted since the end; apart from that only the end itself is told.
    [[nodiscard]] QStringList afterTheEnd() const
    {
        QStringList after = said.mid(m_end);
        after.removeAll(u"no comment"_s);
        after.removeAll(u"name"_s);
        return after;
    }

    std::function<void()> deed;
    QStringList said;
    bool done = false;

private:
    void note(const QString& effect)
    {
        said.append(effect);
        if (said.size() - 1 != m_fatal)
            return;
        done = true;
        deed();
        m_end = said.size();
    }

    qsizetype m_fatal;
    qsizetype m_end = 0;
};

enum class Deed { Detach, AttachAnother, Delete };

constexpr std::array deeds = {Deed::Detach, Deed::AttachAnother, Deed::Delete};

} // namespace

/// Whoever hears of an expert may end it on the spot: detach it, attach another, delete its seat, close its
/// chart. Each story of an expert is told again and again, and has its end at each of its effects in turn.
/// What a sanitizer has to find must not be there, and the rest of the story has no effect.
class tst_ExpertEndings final : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    QString m_second;

    using Steps = std::vector<std::function<void()>>;

    /// An expert on a chart of its own, with what is heard of it.
    struct Seat {
        Seat(Deed kind, qsizetype fatal, const QString& second)
            : effects(fatal)
        {
            effects.hear(*expert);
            effects.deed = [this, kind, second] {
                if (kind == Deed::Detach)
                    expert->detach();
                else if (kind == Deed::AttachAnother)
                    expert->attach(second);
                else
                    expert.reset();
            };
        }

        ChartWidget chart;
        std::unique_ptr<ChartExpert> expert = std::make_unique<ChartExpert>(chart, u"EURUSD"_s);
        Effects effects;
    };

    QString script(const QByteArray& text, const QString& name)
    {
        QFile file(m_folder.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("The script could not be written");
        return file.fileName();
    }

    /// A script that does everything everywhere, and reads everything after each deed.
    QString busy(const QByteArray& rest)
    {
        return script(
            "function read() { return [Bid, Ask, Bars(), Close(0), iMA(1, 0, 0), iRSI(1, 0), Digits(),"
            " Account.balance, Account.equity, Positions.count(), Symbol()] }"
            "function act(name) {"
            " var all = [function() { Print(name) }, function() { Alert(name) },"
            "  function() { Comment(name) }, function() { Trade.buy(1, {slPoints: 5}) },"
            "  function() { Trade.sell(-1) }, function() { Trade.closeAll() },"
            "  function() { EventSetTimer(1); EventKillTimer() }];"
            " for (var i = 0; i < all.length; ++i) { all[i](); read() } }"
                + rest,
            u"First.js"_s);
    }

    /// A promise is kept in one turn of the event loop, and what it does happens in the next.
    static void letPromisesAct()
    {
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }

    static void checkTheEnd(Seat& seat, Deed deed)
    {
        QCOMPARE(seat.effects.afterTheEnd(), QStringList());
        QCOMPARE(seat.expert == nullptr, deed == Deed::Delete);
        if (!seat.expert)
            return;
        const bool another = deed == Deed::AttachAnother;
        QCOMPARE(seat.expert->name(), another ? u"Second"_s : QString());
        seat.expert->tick();
        QCOMPARE(seat.effects.afterTheEnd(), another ? QStringList(u"Second: tick"_s) : QStringList());
    }

private Q_SLOTS:
    void initTestCase() { m_second = script("function OnTick() { Print('tick') }", u"Second.js"_s); }

    void theStoryMayEndAtAnyOfItsEffects_data()
    {
        QTest::addColumn<QByteArray>("rest");
        QTest::addColumn<bool>("replaced");
        const QByteArray hooks
            = "act('file'); function OnInit() { act('OnInit') } function OnTick() { act('OnTick') }"
              "function OnDeinit() { act('OnDeinit') }";
        QTest::newRow("detached") << hooks << false;
        QTest::newRow("replaced") << hooks << true;
        QTest::newRow("a promise in each hook") << QByteArray(
            "function later() { Promise.resolve().then(function() { act('promise') }) } later();"
            "var OnInit = later, OnTick = later, OnDeinit = later;")
                                                << false;
        QTest::newRow("OnTick throws")
            << QByteArray(hooks + "var one = OnTick; OnTick = function() { one(); throw 'thrown' }") << false;
        QTest::newRow("OnTick and OnDeinit throw") << QByteArray(
            "function OnTick() { throw 'thrown' } function OnDeinit() { act('OnDeinit'); throw 'thrown' }")
                                                   << false;
        QTest::newRow("OnDeinit throws, replaced")
            << QByteArray("function OnDeinit() { act('OnDeinit'); throw 'thrown' }") << true;
        QTest::newRow("OnInit throws")
            << QByteArray("function OnInit() { act('OnInit'); throw 'thrown' }") << false;
        QTest::newRow("the file throws") << QByteArray("act('file'); throw 'thrown'") << false;
        QTest::newRow("a hook cannot be read") << QByteArray(
            "act('file'); Object.defineProperty(this, 'OnTick', {get: function() { act('get'); "
            "throw 'thrown' }})") << false;
        QTest::newRow("the stack runs out")
            << QByteArray("function deep() { deep() } function OnTick() { act('OnTick'); deep() }") << false;
    }
    void theStoryMayEndAtAnyOfItsEffects()
    {
        QFETCH(QByteArray, rest);
        QFETCH(bool, replaced);
        const QString first = busy(rest);
        const QString third = script("", u"Third.js"_s);
        for (const Deed deed : deeds) {
            qsizetype effects = 0;
            for (bool ended = true; ended; ++effects) {
                Seat seat(deed, effects, m_second);
                const Steps steps = {[&] { seat.expert->attach(first); }, [&] { seat.expert->tick(); },
                    letPromisesAct, [&] { seat.expert->tick(); },
                    [&] { replaced ? seat.expert->attach(third) : seat.expert->detach(); }};
                for (const auto& step : steps) {
                    if (!seat.effects.done)
                        step();
                }
                letPromisesAct();
                ended = seat.effects.done;
                // Whoever only detaches what is on its way out does not keep the next one away.
                if (ended && !(replaced && deed == Deed::Detach))
                    checkTheEnd(seat, deed);
                QVERIFY2(!QTest::currentTestFailed(), qPrintable(seat.effects.said.join(u';')));
            }
            QVERIFY(effects > 7);
        }
    }

    void detachingTheOneThatGoesDoesNotKeepTheNextAway()
    {
        const QString first = busy("function OnDeinit() { act('OnDeinit') }");
        Seat plain(Deed::Detach, -1, {});
        plain.expert->attach(first);
        const qsizetype start = plain.effects.said.size();
        for (qsizetype i = 0; i < 6; ++i) {
            Seat seat(Deed::Detach, start + i, {});
            seat.expert->attach(first);
            seat.expert->attach(m_second);
            QVERIFY(seat.effects.done);
            QCOMPARE(seat.expert->name(), u"Second"_s);
            QCOMPARE(seat.effects.afterTheEnd(), QStringList(u"Second: Second loaded"_s));
        }
    }

    void theStoryMayEndAtAnyEffectOfOnTimer()
    {
        const QString first = busy(
            "EventSetTimer(1); function OnTimer() { act('OnTimer'); EventSetTimer(1); throw 'thrown' }");
        const auto attach = [&first](const Seat& seat) -> QTimer& {
            auto timer = std::make_unique<QTimer>();
            QTimer& running = *timer;
            seat.expert->attach(first, std::make_unique<SystemExpertTimer>(std::move(timer)));
            return running;
        };
        Seat plain(Deed::Detach, -1, {});
        QTimer& timer = attach(plain);
        const qsizetype start = plain.effects.said.size();
        timeOut(timer);
        QCOMPARE(plain.effects.said.last(), u"First: OnTimer: thrown"_s);
        const qsizetype effects = plain.effects.said.size() - start;
        QCOMPARE(effects, 7);
        for (const Deed deed : deeds) {
            for (qsizetype i = 0; i < effects; ++i) {
                Seat seat(deed, start + i, m_second);
                timeOut(attach(seat));
                QVERIFY(seat.effects.done);
                checkTheEnd(seat, deed);
            }
        }
    }

    void theChartMayBeClosedAtAnyEffect_data()
    {
        QTest::addColumn<QByteArray>("rest");
        const QByteArray hooks
            = "act('file'); function OnInit() { act('OnInit') } function OnDeinit() { act('OnDeinit') }";
        QTest::newRow("well behaved") << QByteArray(hooks + "function OnTick() { act('OnTick') }");
        QTest::newRow("OnTick throws")
            << QByteArray(hooks + "function OnTick() { act('OnTick'); throw 'thrown' }");
        QTest::newRow("promise") << QByteArray(
            "function OnTick() { Promise.resolve().then(function() { act('promise') }) }");
        QTest::newRow("OnInit throws") << QByteArray("function OnInit() { act('OnInit'); throw 'thrown' }");
        QTest::newRow("the file throws") << QByteArray("act('file'); throw 'thrown'");
    }
    void theChartMayBeClosedAtAnyEffect()
    {
        QFETCH(QByteArray, rest);
        const QString first = busy(rest);
        const auto tick
            = [](ChartWindow& window) { window.onPrices(fixtures::quote(u"EURUSD"_s, 1.1, 1.2)); };
        fixtures::ServedChart served;
        const auto open = [&served] {
            served.window = std::make_unique<ChartWindow>(served.api, u"EURUSD"_s, u"15m"_s, QString(), 5);
        };
        qsizetype effects = 0;
        for (bool ended = true; ended; ++effects) {
            open();
            Effects heard(effects);
            heard.deed = [&served] { served.window.reset(); };
            heard.hear(*served.window->findChild<ChartExpert*>());
            const Steps steps = {[&] { served.window->attachExpert(first); }, [&] { tick(*served.window); },
                letPromisesAct, [&] { served.window->detachExpert(); }};
            for (const auto& step : steps) {
                if (!heard.done)
                    step();
            }
            letPromisesAct();
            ended = heard.done;
            QCOMPARE(served.window == nullptr, ended);
            if (ended)
                QCOMPARE(heard.afterTheEnd(), QStringList());
        }
        QVERIFY(effects > 7);
    }

    void whatAClosingChartsExpertBringsAboutInTheEndGoesWithIt()
    {
        const QString first = busy("function OnDeinit() { act('OnDeinit') }");
        for (qsizetype i = 0; i < 6; ++i) {
            fixtures::ServedChart served;
            ChartWindow* const window = served.window.get();
            window->attachExpert(first);
            Effects heard(i);
            heard.deed = [this, window] { window->attachExpert(m_second); };
            heard.hear(*window->findChild<ChartExpert*>());
            served.window.reset();
            QVERIFY(heard.done);
            QCOMPARE(heard.afterTheEnd(), QStringList());
        }
    }
};

TAVORAN_TEST(tst_ExpertEndings)
#include "tst_ExpertEndings.moc"
