#include "mainwindow/PaintHold.h"
#include "support/PaintCounter.h"
#include "support/ServedClient.h"
#include "support/TestMain.h"

#include <QNetworkAccessManager>
#include <QPointer>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int longMs = 60'000;

struct Desk : fixtures::ServedClient {
    QWidget window;
    PaintCounter paints{window};

    Desk()
    {
        server.on("POST", "/api/trades/place", StubAnswer::held());
        window.show();
        paints.taken();
    }

    /// An order that the server has not answered; it goes with the client.
    [[nodiscard]] const QNetworkReply& order()
    {
        return *api.post(u"/api/trades/place"_s, {{u"symbol"_s, u"EURUSD"_s}});
    }
};

} // namespace

class tst_PaintHold final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void a_body_leaves_before_the_window_is_painted()
    {
        Desk desk;
        desk.window.update();
        const QNetworkReply& reply = desk.order();
        const QPointer<PaintHold> hold = new PaintHold(desk.window, reply, longMs);
        QList<int> painted;
        connect(&reply, &QNetworkReply::uploadProgress, this,
            [&](qint64 sent, qint64 all) { painted.append(sent == all ? desk.paints.count() : -1); });
        QTRY_COMPARE(desk.paints.count(), 1);
        QCOMPARE(painted, QList<int>{0});
        QTRY_VERIFY(!hold);
    }

    void a_window_waits_no_longer_for_a_body_than_for_that_long()
    {
        Desk desk;
        desk.server.on("GET", "/held", StubAnswer::held());
        desk.window.update();
        QNetworkAccessManager manager;
        const QNetworkReply& withoutBody
            = *manager.get(QNetworkRequest(QUrl(desk.server.url() + u"/held"_s)));
        const QPointer<PaintHold> hold = new PaintHold(desk.window, withoutBody, 1);
        QTRY_COMPARE(desk.paints.count(), 1);
        QTRY_VERIFY(!hold);
    }

    void what_is_not_due_is_not_painted()
    {
        Desk desk;
        const QPointer<PaintHold> hold = new PaintHold(desk.window, desk.order(), longMs);
        QTRY_VERIFY(!hold);
        QCOMPARE(desk.paints.taken(), 0);
    }

    void of_two_orders_each_leaves_before_the_paint()
    {
        Desk desk;
        desk.window.update();
        const QPointer<PaintHold> first = new PaintHold(desk.window, desk.order(), longMs);
        const QPointer<PaintHold> second = new PaintHold(desk.window, desk.order(), longMs);
        QTRY_COMPARE(desk.paints.count(), 1);
        QTRY_VERIFY(!first);
        QTRY_VERIFY(!second);
    }

    void a_window_may_go_meanwhile()
    {
        Desk desk;
        auto window = std::make_unique<QWidget>();
        window->show();
        const QPointer<PaintHold> hold = new PaintHold(*window, desk.order(), longMs);
        window->update();
        window.reset();
        QVERIFY(!hold);
        desk.settle();
    }
};

TAVORAN_TEST(tst_PaintHold)

#include "tst_PaintHold.moc"
