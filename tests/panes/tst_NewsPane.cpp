#include "app/base/TerminalSettings.h"
#include "net/ApiClient.h"
#include "panes/NewsEvent.h"
#include "panes/NewsPane.h"
#include "support/ParseJson.h"
#include "support/StubHttpServer.h"
#include "support/TestMain.h"
#include "support/TimeZone.h"

#include <QHeaderView>
#include <QJsonDocument>
#include <QNetworkReply>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

const QByteArray path = "/api/news/upcoming";

QByteArray eventJson(const QByteArray& id, int minutes, const QByteArray& impact = "HIGH")
{
    return R"({"id":")" + id + R"(","eventTime":"2026-11-20T13:30:00.000Z","minutesUntil":)"
        + QByteArray::number(minutes) + R"(,"impact":")" + impact
        + R"(","currency":"USD","title":"Rate decision"})";
}

QByteArray body(const QByteArrayList& events, const QByteArray& settings = "{}")
{
    return R"({"settings":)" + settings + R"(,"events":[)" + events.join(',') + "]}";
}

/// The pane on show over a scripted server.
struct Desk {
    StubHttpServer server;
    ApiClient api{TerminalSettings::instance()};
    NewsPane pane{api};
    QSignalSpy balloons{&pane, &NewsPane::balloonWanted};

    Desk()
    {
        TerminalSettings::instance().setServerUrl(server.url());
        pane.resize(600, 100);
        pane.show();
    }
    Q_DISABLE_COPY_MOVE(Desk)

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
        QTRY_VERIFY(api.findChildren<QNetworkReply*>().isEmpty());
    }
    void read(const QByteArray& json) { read(StubAnswer::json(json)); }
};

} // namespace

Q_DECLARE_METATYPE(StubAnswer)

class TestNewsPane final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void looksAsATraderKnowsIt();
    void readsNothingBeforeItIsAsked();
    void readsAgainEveryTwoMinutes();
    void showsEventsInTheServersOrder();
    void showsTheTimeLeft_data();
    void showsTheTimeLeft();
    void showsTheEventsTime_data();
    void showsTheEventsTime();
    void warnsInTimeAndOnce();
    void anEventListedTwiceIsAnnouncedOnce();
    void warnsAtTheServersMinutes_data();
    void warnsAtTheServersMinutes();
    void neverWarnsOfLessThanHighImpact();
    void anEventPassedUnseenIsNotAnnouncedLater();
    void failuresKeepTheListAndSayNothing_data();
    void failuresKeepTheListAndSayNothing();
    void anAnswerWithoutEventsEmptiesTheList_data();
    void anAnswerWithoutEventsEmptiesTheList();
    void badFieldsCountAsMissing();
    void markupInATitleIsText();
    void tenThousandEventsAreShown();
    void aRefreshKeepsThePlaceInTheList();
};

void TestNewsPane::initTestCase()
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    useForeignTimeZone(); // five and a half hours ahead
}

void TestNewsPane::looksAsATraderKnowsIt()
{
    const Desk desk;
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

void TestNewsPane::readsNothingBeforeItIsAsked()
{
    Desk desk;
    desk.api.get(u"/other"_s, [](const QJsonDocument&, const QString&) {});
    QTRY_COMPARE(desk.server.count("GET", "/other"), 1);
    QCOMPARE(desk.server.count("GET", path), 0);
}

void TestNewsPane::readsAgainEveryTwoMinutes()
{
    Desk desk;
    auto* timer = desk.pane.findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(timer && timer->isActive() && !timer->isSingleShot());
    QCOMPARE(timer->interval(), 120000);
    timer->setInterval(0);
    QTRY_VERIFY(desk.server.count("GET", path) >= 1);
}

void TestNewsPane::showsEventsInTheServersOrder()
{
    Desk desk;
    desk.read(body({eventJson("b", 90), eventJson("a", -1, "MEDIUM"), eventJson("c", 30, "whatever")}));
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

void TestNewsPane::showsTheTimeLeft_data()
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

void TestNewsPane::showsTheTimeLeft()
{
    QFETCH(int, minutes);
    QFETCH(QString, text);
    QCOMPARE(countdownText(minutes), text);
}

void TestNewsPane::showsTheEventsTime_data()
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

void TestNewsPane::showsTheEventsTime()
{
    QFETCH(QByteArray, iso);
    QFETCH(QString, text);
    const auto news
        = NewsReply::read(QJsonDocument::fromJson(R"({"events":[{"eventTime":")" + iso + R"("}]})"));
    QCOMPARE(news.events.size(), 1);
    QCOMPARE(news.events.first().time, text);
}

void TestNewsPane::warnsInTimeAndOnce()
{
    Desk desk;
    desk.read(body({eventJson("a", 16)}));
    QCOMPARE(desk.balloons.size(), 0);
    desk.read(body({eventJson("a", 15)}));
    QCOMPARE(desk.balloons.size(), 1);
    QCOMPARE(desk.balloons.at(0).at(0).value<Balloon>(),
        (Balloon{u"Upcoming News — USD"_s, u"Rate decision in 15 minutes"_s, Balloon::Kind::Warning, 15000}));
    desk.read(body({eventJson("a", 13), eventJson("b", 0)}));
    QCOMPARE(desk.balloons.size(), 2);
    QCOMPARE(desk.balloons.at(1).at(0).value<Balloon>().text, u"Rate decision in 0 minutes"_s);
}

void TestNewsPane::anEventListedTwiceIsAnnouncedOnce()
{
    Desk desk;
    desk.read(body({eventJson("a", 5), eventJson("b", 6), eventJson("a", 5)}));
    QCOMPARE(desk.list()->topLevelItemCount(), 3);
    QCOMPARE(desk.balloons.size(), 2);
}

void TestNewsPane::warnsAtTheServersMinutes_data()
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

void TestNewsPane::warnsAtTheServersMinutes()
{
    QFETCH(QByteArray, settings);
    QFETCH(int, minutes);
    QFETCH(int, warnings);
    Desk desk;
    desk.read(body({eventJson("a", minutes)}, settings));
    QCOMPARE(desk.list()->topLevelItemCount(), 1);
    QCOMPARE(desk.balloons.size(), warnings);
}

void TestNewsPane::neverWarnsOfLessThanHighImpact()
{
    Desk desk;
    desk.read(body({eventJson("a", 5, "MEDIUM"), eventJson("b", 5, "high"), eventJson("c", 5, "")}));
    QCOMPARE(desk.list()->topLevelItemCount(), 3);
    QCOMPARE(desk.balloons.size(), 0);
}

void TestNewsPane::anEventPassedUnseenIsNotAnnouncedLater()
{
    StubHttpServer server;
    TerminalSettings::instance().setServerUrl(server.url());
    ApiClient api{TerminalSettings::instance()};
    NewsPane pane(api); // nobody listens: a desktop without a tray
    server.on("GET", path, StubAnswer::json(body({eventJson("a", 5)})));
    pane.refresh();
    const auto* list = pane.findChild<QTreeWidget*>(u"newsList"_s);
    QTRY_COMPARE(list->topLevelItemCount(), 1);
    QSignalSpy balloons(&pane, &NewsPane::balloonWanted);
    server.on("GET", path, StubAnswer::json(body({eventJson("a", 4), eventJson("z", 99)})));
    pane.refresh();
    QTRY_COMPARE(list->topLevelItemCount(), 2);
    QCOMPARE(balloons.size(), 0);
}

void TestNewsPane::failuresKeepTheListAndSayNothing_data()
{
    QTest::addColumn<StubAnswer>("answer");
    const QByteArray events = body({eventJson("b", 5)});
    QTest::newRow("refused") << StubAnswer::message(u"no"_s, 400);
    QTest::newRow("refused with events") << StubAnswer::json(events, 500);
    QTest::newRow("connection closed") << StubAnswer::closed();
    QTest::newRow("cut after the events") << StubAnswer::raw(
        "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(events.size() + 1) + "\r\n\r\n" + events);
}

void TestNewsPane::failuresKeepTheListAndSayNothing()
{
    QFETCH(StubAnswer, answer);
    Desk desk;
    desk.read(body({eventJson("a", 90)}));
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

void TestNewsPane::anAnswerWithoutEventsEmptiesTheList_data()
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

void TestNewsPane::anAnswerWithoutEventsEmptiesTheList()
{
    QFETCH(StubAnswer, answer);
    Desk desk;
    desk.read(body({eventJson("a", 90), eventJson("b", 5)}));
    QCOMPARE(desk.list()->topLevelItemCount(), 2);
    desk.read(answer);
    QCOMPARE(desk.list()->topLevelItemCount(), 0);
    // What was announced stays announced.
    desk.read(body({eventJson("b", 4)}));
    QCOMPARE(desk.balloons.size(), 1);
}

void TestNewsPane::badFieldsCountAsMissing()
{
    Desk desk;
    desk.read(R"({"settings":7,"events":[{"title":5,"minutesUntil":"soon","impact":[]},5,null,{}]})");
    QCOMPARE(desk.list()->topLevelItemCount(), 2);
    QCOMPARE(desk.cell(0, 3), QString());
    QCOMPARE(desk.cell(0, 4), u"0m"_s);
}

void TestNewsPane::markupInATitleIsText()
{
    Desk desk;
    desk.read(R"({"events":[{"id":"x","impact":"HIGH","title":"<b>%1</b>\nX","currency":"%2"}]})");
    QCOMPARE(desk.cell(0, 3), u"<b>%1</b> X"_s);
    QCOMPARE(desk.balloons.at(0).at(0).value<Balloon>().text, u"<b>%1</b> X in 0 minutes"_s);
    QCOMPARE(desk.balloons.at(0).at(0).value<Balloon>().title, u"Upcoming News — %2"_s);
}

void TestNewsPane::tenThousandEventsAreShown()
{
    Desk desk;
    QByteArrayList events;
    for (int i = 0; i < 10000; ++i)
        events.append(eventJson(QByteArray::number(i), 500, "LOW"));
    desk.read(body(events));
    QCOMPARE(desk.list()->topLevelItemCount(), 10000);
}

void TestNewsPane::aRefreshKeepsThePlaceInTheList()
{
    Desk desk;
    QByteArrayList events;
    for (int i = 0; i < 50; ++i)
        events.append(eventJson(QByteArray::number(i), 500, "LOW"));
    desk.read(body(events));
    QScrollBar* bar = desk.list()->verticalScrollBar();
    QTRY_VERIFY(bar->maximum() > 10);
    desk.list()->setCurrentItem(desk.list()->topLevelItem(40));
    bar->setValue(10);
    desk.read(body(events));
    desk.list()->grab(); // lays the new rows out
    QCOMPARE(bar->value(), 10);
    QVERIFY(bar->maximum() > 10);
}

TAVORAN_TEST(TestNewsPane)
#include "tst_NewsPane.moc"
