#include "panes/NewsEvent.h"
#include "panes/NewsPane.h"
#include "support/ParseJson.h"
#include "support/Records.h"
#include "support/ServedClient.h"
#include "support/TestMain.h"
#include "support/TimeZone.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const QByteArray path = "/api/news/upcoming";

/// An event so many minutes ahead.
records::NewsEvent eventIn(int minutes, const records::Value& id, const char* impact = "HIGH")
{
    return records::newsEvent(id).in(minutes).impact(impact);
}

/// The pane on show over a scripted server.
struct NewsDesk final : fixtures::ServedClient {
    NewsPane pane{api};
    QSignalSpy balloons{&pane, &NewsPane::balloonWanted};

    NewsDesk()
    {
        pane.resize(600, 100);
        pane.show();
    }

    [[nodiscard]] QTreeWidget* list() const { return pane.findChild<QTreeWidget*>(u"newsList"_s); }
    [[nodiscard]] QString cell(int row, int column) const
    {
        const QTreeWidgetItem* item = list()->topLevelItem(row);
        return item ? item->text(column) : u"no such row"_s;
    }
    /// Reads this answer and waits until it is on show.
    void read(const StubAnswer& answer)
    {
        server.on("GET", path, StubAnswer::held());
        pane.refresh();
        QTRY_COMPARE(server.heldCount(), 1);
        server.on("GET", path, answer); // Qt asks again where a connection closes without an answer
        server.release(answer);
        QTRY_VERIFY(!isWaiting());
    }
    void read(const QJsonArray& events) { read(StubAnswer::json(records::news(events))); }
};

} // namespace

Q_DECLARE_METATYPE(StubAnswer)

class TestNewsPane final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        useForeignTimeZone(); // five and a half hours ahead
    }

    void looksAsATraderKnowsIt()
    {
        const NewsDesk desk;
        QStringList headers;
        for (int column = 0; column < desk.list()->columnCount(); ++column)
            headers.append(desk.list()->headerItem()->text(column));
        QCOMPARE(headers, QStringList({u"Time"_s, u"Currency"_s, u"Impact"_s, u"Event"_s, u"In"_s}));
        QCOMPARE(desk.list()->columnWidth(0), 130);
        QCOMPARE(desk.list()->columnWidth(1), 70);
        QCOMPARE(desk.list()->columnWidth(2), 70);
        QCOMPARE(desk.list()->header()->sectionResizeMode(3), QHeaderView::Stretch);
        QVERIFY(!desk.list()->header()->stretchLastSection());
        QVERIFY(!desk.list()->rootIsDecorated());
        QVERIFY(desk.list()->uniformRowHeights());
        QCOMPARE(desk.list()->geometry(), desk.pane.rect());
    }

    void readsNothingBeforeItIsAsked()
    {
        NewsDesk desk;
        desk.api.get(u"/other"_s, [](const QJsonDocument&, const QString&) {});
        QTRY_COMPARE(desk.server.count("GET", "/other"), 1);
        QCOMPARE(desk.server.count("GET", path), 0);
    }

    void readsAgainEveryTwoMinutes()
    {
        NewsDesk desk;
        auto* timer = desk.pane.findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
        QVERIFY(timer && timer->isActive() && !timer->isSingleShot());
        QCOMPARE(timer->interval(), 120000);
        timer->setInterval(0);
        QTRY_VERIFY(desk.server.count("GET", path) >= 1);
    }

    void a_refresh_keeps_the_selected_event()
    {
        NewsDesk desk;
        desk.read({eventIn(1, "a"), eventIn(30, "b"), eventIn(90, "c")});
        desk.list()->setCurrentItem(desk.list()->topLevelItem(1));
        desk.read({eventIn(28, "b"), eventIn(88, "c")});
        QCOMPARE(desk.list()->currentIndex().row(), 0);
        QCOMPARE(desk.list()->selectedItems(), {desk.list()->topLevelItem(0)});
        desk.read({eventIn(86, "c")});
        QCOMPARE(desk.list()->currentIndex().row(), 0);
        QCOMPARE(desk.list()->selectedItems(), {desk.list()->topLevelItem(0)});
        desk.read({eventIn(60, "d")});
        QVERIFY(desk.list()->selectedItems().isEmpty());
    }

    void showsEventsInTheServersOrder()
    {
        NewsDesk desk;
        desk.read({eventIn(90, "b"), eventIn(-1, "a", "MEDIUM"), eventIn(30, "c", "whatever")});
        QCOMPARE(desk.list()->topLevelItemCount(), 3);
        QCOMPARE(desk.cell(0, 0), u"Fri 19:00"_s);
        QCOMPARE(desk.cell(0, 1), u"USD"_s);
        QCOMPARE(desk.cell(0, 2), u"HIGH"_s);
        QCOMPARE(desk.cell(0, 3), u"Rate decision"_s);
        QCOMPARE(desk.cell(0, 4), u"1h 30m"_s);
        QCOMPARE(desk.cell(1, 2), u"MEDIUM"_s);
        QCOMPARE(desk.cell(1, 4), u"now"_s);
        QCOMPARE(desk.cell(2, 2), u"whatever"_s);
        QCOMPARE(desk.list()->topLevelItem(0)->foreground(2).color(), QColor(u"#ff4a4a"_s));
        QCOMPARE(desk.list()->topLevelItem(1)->foreground(2).color(), QColor(u"#ffa726"_s));
        QCOMPARE(desk.list()->topLevelItem(2)->foreground(2).color(), QColor(u"#8a8a8a"_s));
    }

    void showsTheTimeLeft_data()
    {
        QTest::addColumn<int>("minutes");
        QTest::addColumn<QString>("text");
        QTest::newRow("75") << 75 << u"1h 15m"_s;
        QTest::newRow("60") << 60 << u"1h 0m"_s;
        QTest::newRow("59") << 59 << u"59m"_s;
        QTest::newRow("0") << 0 << u"0m"_s;
        QTest::newRow("begun") << -1 << u"now"_s;
        QTest::newRow("two days") << 2880 << u"48h 0m"_s;
    }
    void showsTheTimeLeft()
    {
        QFETCH(int, minutes);
        QFETCH(QString, text);
        QCOMPARE(countdownText(minutes), text);
    }

    void showsTheEventsTime_data()
    {
        QTest::addColumn<QByteArray>("iso");
        QTest::addColumn<QString>("text");
        QTest::newRow("with milliseconds") << QByteArray("2026-11-20T13:30:00.999Z") << u"Fri 19:00"_s;
        QTest::newRow("without") << QByteArray("2026-11-20T13:30:00Z") << u"Fri 19:00"_s;
        QTest::newRow("tomorrow by then") << QByteArray("2026-11-20T20:15:00Z") << u"Sat 01:45"_s;
        QTest::newRow("another zone") << QByteArray("2026-11-20T13:30:00+02:00") << u"Fri 17:00"_s;
        QTest::newRow("no zone means UTC") << QByteArray("2026-11-20T13:30:00") << u"Fri 19:00"_s;
        QTest::newRow("broken") << QByteArray("soon") << QString();
        QTest::newRow("no such day") << QByteArray("2026-13-40T13:30:00Z") << QString();
    }
    void showsTheEventsTime()
    {
        QFETCH(QByteArray, iso);
        QFETCH(QString, text);
        const auto news
            = NewsReply::read(QJsonDocument::fromJson(R"({"events":[{"eventTime":")" + iso + R"("}]})"));
        QCOMPARE(news.events.size(), 1);
        QCOMPARE(news.events.first().time, text);
    }

    void warnsInTimeAndOnce()
    {
        NewsDesk desk;
        desk.read({eventIn(16, "a")});
        QCOMPARE(desk.balloons.size(), 0);
        desk.read({eventIn(15, "a")});
        QCOMPARE(desk.balloons.size(), 1);
        QCOMPARE(desk.balloons.at(0).at(0).value<Balloon>(),
            (Balloon{
                u"Upcoming News — USD"_s, u"Rate decision in 15 minutes"_s, Balloon::Kind::Warning, 15000}));
        desk.read({eventIn(13, "a"), eventIn(0, "b")});
        QCOMPARE(desk.balloons.size(), 2);
        QCOMPARE(desk.balloons.at(1).at(0).value<Balloon>().text, u"Rate decision in 0 minutes"_s);
    }

    void anEventListedTwiceIsAnnouncedOnce()
    {
        NewsDesk desk;
        desk.read({eventIn(5, "a"), eventIn(6, "b"), eventIn(5, "a")});
        QCOMPARE(desk.list()->topLevelItemCount(), 3);
        QCOMPARE(desk.balloons.size(), 2);
    }

    void warnsAtTheServersMinutes_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<int>("minutes");
        QTest::addColumn<int>("warnings");
        QTest::newRow("thirty") << QByteArray(R"({"notifyMin":30})") << 30 << 1;
        QTest::newRow("five, too early") << QByteArray(R"({"notifyMin":5})") << 6 << 0;
        QTest::newRow("a wrong type means fifteen") << QByteArray(R"({"notifyMin":"x"})") << 15 << 1;
        QTest::newRow("a wrong type means no more") << QByteArray(R"({"notifyMin":"20"})") << 16 << 0;
        QTest::newRow("none means fifteen") << QByteArray("7") << 15 << 1;
        QTest::newRow("none means no more") << QByteArray("7") << 16 << 0;
        QTest::newRow("begun") << QByteArray("{}") << -1 << 0;
    }
    void warnsAtTheServersMinutes()
    {
        QFETCH(QByteArray, settings);
        QFETCH(int, minutes);
        QFETCH(int, warnings);
        NewsDesk desk;
        QJsonObject news = records::news({eventIn(minutes, "a")});
        news.insert("settings"_L1, fixtures::parseValue(settings));
        desk.read(StubAnswer::json(news));
        QCOMPARE(desk.list()->topLevelItemCount(), 1);
        QCOMPARE(desk.balloons.size(), warnings);
    }

    void neverWarnsOfLessThanHighImpact()
    {
        NewsDesk desk;
        desk.read({eventIn(5, "a", "MEDIUM"), eventIn(5, "b", "high"), eventIn(5, "c", "")});
        QCOMPARE(desk.list()->topLevelItemCount(), 3);
        QCOMPARE(desk.balloons.size(), 0);
    }

    void anEventPassedUnseenIsNotAnnouncedLater()
    {
        NewsDesk desk;
        NewsPane pane(desk.api); // nobody listens: a desktop without a tray
        desk.server.on("GET", path, StubAnswer::json(records::news({eventIn(5, "a")})));
        pane.refresh();
        const auto* list = pane.findChild<QTreeWidget*>(u"newsList"_s);
        QTRY_COMPARE(list->topLevelItemCount(), 1);
        QSignalSpy balloons(&pane, &NewsPane::balloonWanted);
        desk.server.on("GET", path, StubAnswer::json(records::news({eventIn(4, "a"), eventIn(99, "z")})));
        pane.refresh();
        QTRY_COMPARE(list->topLevelItemCount(), 2);
        QCOMPARE(balloons.size(), 0);
    }

    void failuresKeepTheListAndSayNothing_data()
    {
        QTest::addColumn<StubAnswer>("answer");
        const QByteArray events = StubAnswer::json(records::news({eventIn(5, "b")})).body;
        QTest::newRow("refused") << StubAnswer::message(u"no"_s, 400);
        QTest::newRow("refused with events") << StubAnswer::json(events, 500);
        QTest::newRow("connection closed") << StubAnswer::closed();
        QTest::newRow("cut after the events") << StubAnswer::raw("HTTP/1.1 200 OK\r\nContent-Length: "
            + QByteArray::number(events.size() + 1) + "\r\n\r\n" + events);
    }
    void failuresKeepTheListAndSayNothing()
    {
        QFETCH(StubAnswer, answer);
        NewsDesk desk;
        desk.read({eventIn(90, "a")});
        desk.read(answer);
        QCOMPARE(desk.list()->topLevelItemCount(), 1);
        QCOMPARE(desk.cell(0, 4), u"1h 30m"_s);
        QCOMPARE(desk.balloons.size(), 0);
        // Nor is it asked again before its time.
        const int asked = desk.server.count("GET", path);
        desk.api.get(u"/other"_s, [](const QJsonDocument&, const QString&) {});
        QTRY_COMPARE(desk.server.count("GET", "/other"), 1);
        QCOMPARE(desk.server.count("GET", path), asked);
    }

    void anAnswerWithoutEventsEmptiesTheList_data()
    {
        QTest::addColumn<StubAnswer>("answer");
        QTest::newRow("an empty object") << StubAnswer::json("{}");
        QTest::newRow("settings only") << StubAnswer::json(R"({"settings":{"notifyMin":5}})");
        QTest::newRow("events of a wrong type") << StubAnswer::json(R"({"events":{}})");
        QTest::newRow("events null") << StubAnswer::json(R"({"events":null})");
        QTest::newRow("a list") << StubAnswer::json("[]");
        QTest::newRow("nothing") << StubAnswer::json("");
        QTest::newRow("no JSON") << StubAnswer::html("<html>", 200);
    }
    void anAnswerWithoutEventsEmptiesTheList()
    {
        QFETCH(StubAnswer, answer);
        NewsDesk desk;
        desk.read({eventIn(90, "a"), eventIn(5, "b")});
        QCOMPARE(desk.list()->topLevelItemCount(), 2);
        desk.read(answer);
        QCOMPARE(desk.list()->topLevelItemCount(), 0);
        // What was announced stays announced.
        desk.read({eventIn(4, "b")});
        QCOMPARE(desk.balloons.size(), 1);
    }

    void badFieldsCountAsMissing()
    {
        NewsDesk desk;
        desk.read(StubAnswer::json(
            R"({"settings":7,"events":[{"title":5,"minutesUntil":"soon","impact":[]},5,null,{}]})"));
        QCOMPARE(desk.list()->topLevelItemCount(), 2);
        QCOMPARE(desk.cell(0, 3), QString());
        QCOMPARE(desk.cell(0, 4), u"0m"_s);
    }

    void markupInATitleIsText()
    {
        NewsDesk desk;
        desk.read(
            {records::newsEvent("x").title("<b>%1</b>\nX").with("currency", "%2").without("minutesUntil")});
        QCOMPARE(desk.cell(0, 3), u"<b>%1</b> X"_s);
        QCOMPARE(desk.balloons.at(0).at(0).value<Balloon>().text, u"<b>%1</b> X in 0 minutes"_s);
        QCOMPARE(desk.balloons.at(0).at(0).value<Balloon>().title, u"Upcoming News — %2"_s);
    }

    void tenThousandEventsAreShown()
    {
        NewsDesk desk;
        QJsonArray events;
        for (int i = 0; i < 10000; ++i)
            events.append(eventIn(500, QString::number(i), "LOW"));
        desk.read(events);
        QCOMPARE(desk.list()->topLevelItemCount(), 10000);
    }

    void aRefreshKeepsThePlaceInTheList()
    {
        NewsDesk desk;
        QJsonArray events;
        for (int i = 0; i < 50; ++i)
            events.append(eventIn(500, QString::number(i), "LOW"));
        desk.read(events);
        QScrollBar* bar = desk.list()->verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 10);
        desk.list()->setCurrentItem(desk.list()->topLevelItem(40));
        bar->setValue(10);
        desk.read(events);
        desk.list()->grab(); // lays the new rows out
        QCOMPARE(bar->value(), 10);
        QVERIFY(bar->maximum() > 10);
    }
};

TAVORAN_TEST(TestNewsPane)
#include "tst_NewsPane.moc"
