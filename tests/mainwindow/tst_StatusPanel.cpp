#include "mainwindow/StatusPanel.h"
#include "support/Hands.h"
#include "support/PaintCounter.h"
#include "support/ReaderEars.h"
#include "support/TestMain.h"
#include "support/Timers.h"

#include <QAccessible>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QStatusBar>
#include <QToolTip>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString longHost = u"terminal.a-platform-with-a-long-name.example"_s;
const QString longHint = u"Click the first point of the trend line, then the second point of the line"_s;

void showWithLongUser(QMainWindow& window, StatusPanel& panel, int width)
{
    panel.setUser(u"first.name.and.last.name@a-long-name.example"_s);
    window.show();
    window.resize(width, 200);
    QCoreApplication::processEvents();
}

} // namespace

class tst_StatusPanel final : public QObject {
    Q_OBJECT

    static QString text(const QMainWindow& window, const QString& label)
    {
        return window.findChild<QLabel*>(label)->text();
    }

private Q_SLOTS:
    void beforeSignInNobodyIsLoggedInAndNothingConnected()
    {
        QMainWindow window;
        const StatusPanel panel(*window.statusBar(), u"example.test"_s);
        QCOMPARE(text(window, u"userLabel"_s), u"Not logged in"_s);
        QCOMPARE(window.findChild<QLabel*>(u"userLabel"_s)->styleSheet(), u"color:#8a94a6;"_s);
        QCOMPARE(text(window, u"connectionLabel"_s),
            u"<span style='color:#ff6b6b'>●</span> Disconnected — example.test"_s);
        QCOMPARE(text(window, u"latencyLabel"_s), QString());
        QCOMPARE(window.statusBar()->currentMessage(), u"For Help, press F1"_s);
        QCOMPARE(panel.accountSelector().objectName(), u"accountSelector"_s);
        QCOMPARE(window.findChild<QComboBox*>(u"accountSelector"_s), &panel.accountSelector());
    }

    void connectionNamesStateAndServer()
    {
        QMainWindow window;
        StatusPanel panel(*window.statusBar(), u"example.test"_s);
        panel.setConnected(true);
        QCOMPARE(text(window, u"connectionLabel"_s),
            u"<span style='color:#26d367'>●</span> Connected — example.test"_s);
        panel.setConnected(false);
        QCOMPARE(text(window, u"connectionLabel"_s),
            u"<span style='color:#ff6b6b'>●</span> Disconnected — example.test"_s);
    }

    void serverTextCannotActAsMarkup()
    {
        QMainWindow window;
        StatusPanel panel(*window.statusBar(), u"<img src=x>%1"_s);
        QVERIFY(text(window, u"connectionLabel"_s).endsWith(u"Disconnected — &lt;img src=x&gt;%1"_s));
    }

    void aNarrowWindowShowsMessageAndWidgetsSideBySide()
    {
        QMainWindow window;
        StatusPanel panel(*window.statusBar(), u"terminal.a-platform-with-a-long-name.example"_s);
        panel.setUser(u"first.name.and.last.name@a-long-name.example"_s);
        panel.setLatency(123);
        panel.setTraffic(123'456'789, 12'345'678);
        window.show();
        window.resize(700, 200);
        QCoreApplication::processEvents();
        QCOMPARE(window.width(), 700);
        const QStatusBar& bar = *window.statusBar();
        int first = bar.width();
        int last = 0;
        QList<QWidget*> shown;
        for (const QString& name : {u"accountSelector"_s, u"connectionLabel"_s, u"latencyLabel"_s,
                 u"trafficLabel"_s, u"userLabel"_s}) {
            auto* widget = bar.findChild<QWidget*>(name);
            for (const QWidget* other : shown)
                QVERIFY(!other->geometry().intersects(widget->geometry()));
            shown.append(widget);
            first = std::min(first, widget->x());
            last = std::max(last, widget->geometry().right());
        }
        QVERIFY(bar.fontMetrics().horizontalAdvance(bar.currentMessage()) + 8 <= first);
        QVERIFY(last < bar.width());
        // What has no room is told by a tip.
        auto* user = bar.findChild<QLabel*>(u"userLabel"_s);
        QVERIFY(user->width() < user->sizeHint().width());
        QHelpEvent question(QEvent::ToolTip, QPoint(3, 3), user->mapToGlobal(QPoint(3, 3)));
        QCoreApplication::sendEvent(user, &question);
        QCOMPARE(QToolTip::text(), user->text());
        QToolTip::hideText();
        // Its beginning is painted, and ends before the edge.
        const QImage picture = user->grab().toImage();
        const auto inkIn = [&](int from, int to) {
            int ink = 0;
            for (int y = 0; y < picture.height(); ++y) {
                for (int x = from; x < to; ++x)
                    ink += picture.pixel(x, y) != picture.pixel(0, 0) ? 1 : 0;
            }
            return ink;
        };
        QVERIFY(inkIn(0, picture.width() / 2) > 20);
        QCOMPARE(inkIn(picture.width() - 1, picture.width()), 0);
    }

    void aLongerMessageGetsRoomWithoutAWiderWindow()
    {
        QMainWindow window;
        StatusPanel panel(*window.statusBar(), u"terminal.example"_s);
        panel.setUser(u"trader@terminal.example"_s);
        window.show();
        window.resize(760, 200);
        QStatusBar& bar = *window.statusBar();
        bar.showMessage(u"Click the first point of the trend line"_s);
        QCoreApplication::processEvents();
        QVERIFY(bar.fontMetrics().horizontalAdvance(bar.currentMessage()) + 8
            <= bar.findChild<QWidget*>(u"accountSelector"_s)->x());
        bar.showMessage(QString(500, u'x'));
        QCoreApplication::processEvents();
        QCOMPARE(window.width(), 760);
        bar.clearMessage();
        QCOMPARE(bar.currentMessage(), u"For Help, press F1"_s);
    }

    void aLongMessageKeepsTheRoomOfTheUsualOne()
    {
        QMainWindow window;
        QStatusBar& bar = *window.statusBar();
        StatusPanel panel(bar, longHost);
        showWithLongUser(window, panel, 1);
        const int usual = bar.contentsMargins().left();
        QVERIFY(usual > bar.fontMetrics().horizontalAdvance(u"For Help, press F1"_s));
        panel.setHint(longHint);
        QCoreApplication::processEvents();
        QCOMPARE(bar.contentsMargins().left(), usual);
    }

    void aMessageThatHadNoRoomGetsItInAWiderWindow()
    {
        QMainWindow window;
        QStatusBar& bar = *window.statusBar();
        StatusPanel panel(bar, longHost);
        showWithLongUser(window, panel, 700);
        const auto* selector = bar.findChild<QWidget*>(u"accountSelector"_s);
        panel.setHint(longHint);
        QCoreApplication::processEvents();
        const int wanted = bar.fontMetrics().horizontalAdvance(bar.currentMessage()) + 8;
        QVERIFY(selector->x() < wanted);
        // So wide that the widgets alone would take nearly all of it.
        const int wide = bar.sizeHint().width() - bar.contentsMargins().left() + 50;
        window.resize(wide, 200);
        QCoreApplication::processEvents();
        QCOMPARE(window.width(), wide);
        QVERIFY(selector->x() >= wanted);
    }

    void a_failure_gives_way_to_the_hint_again()
    {
        QMainWindow window;
        StatusPanel panel(*window.statusBar(), u"s"_s);
        const QStatusBar& bar = *window.statusBar();
        panel.setHint(u"Click"_s);
        panel.setFailure(u"Modify failed: a\nb"_s);
        QCOMPARE(bar.currentMessage(), u"Modify failed: a b"_s);
        timeOut(*bar.findChild<QTimer*>());
        QCOMPARE(bar.currentMessage(), u"Click"_s);
        panel.setFailure(u"Modify failed: c"_s);
        panel.setFailure({});
        QCOMPARE(bar.currentMessage(), u"Click"_s);
        // Nothing comes later of a time that is over.
        QVERIFY(!bar.findChild<QTimer*>());
        panel.setFailure({});
        QCOMPARE(bar.currentMessage(), u"Click"_s);
    }

    void a_failure_is_spoken_and_hints_are_not()
    {
        QMainWindow window;
        StatusPanel panel(*window.statusBar(), u"s"_s);
        window.show();
        const ReaderEars ears;
        panel.setHint(u"Click"_s);
        QCOMPARE(ears.count(QAccessible::Alert), 0);
        panel.setFailure(u"Modify failed: too close"_s);
        QCOMPARE(ears.names(QAccessible::Alert), QStringList(u"Modify failed: too close"_s));
        panel.setFailure({});
        QCOMPARE(ears.count(QAccessible::Alert), 1);
    }

    void a_failure_is_a_notification_as_long_as_it_is_shown()
    {
        QMainWindow window;
        StatusPanel panel(*window.statusBar(), u"s"_s);
        window.show();
        const auto notifications = [&window] {
            QStringList names;
            QAccessibleInterface* bar = QAccessible::queryAccessibleInterface(window.statusBar());
            for (int index = 0; index < bar->childCount(); ++index) {
                const QAccessibleInterface* part = bar->child(index);
                if (part->role() != QAccessible::Notification || part->state().invisible)
                    continue;
                names.append(part->text(QAccessible::Name));
                if (!part->rect().isEmpty())
                    names.append(u"painted over the message"_s);
            }
            return names;
        };
        QCOMPARE(notifications(), QStringList());
        panel.setFailure(u"Modify failed: too close"_s);
        QCOMPARE(notifications(), QStringList(u"Modify failed: too close"_s));
        panel.setHint(u"Click"_s);
        QCOMPARE(notifications(), QStringList());
        panel.setFailure(u"Close failed: no price"_s);
        QCOMPARE(notifications(), QStringList(u"Close failed: no price"_s));
        panel.setHint({});
        QCOMPARE(notifications(), QStringList());
        panel.setFailure(u"Close failed: no price"_s);
        panel.setFailure({});
        QCOMPARE(notifications(), QStringList());
    }

    void userIsPlainText()
    {
        QMainWindow window;
        StatusPanel panel(*window.statusBar(), u"s"_s);
        panel.setUser(u"<b>eve</b>\nroot"_s);
        const auto* label = window.findChild<QLabel*>(u"userLabel"_s);
        QCOMPARE(label->text(), u"<b>eve</b> root"_s);
        QCOMPARE(label->textFormat(), Qt::PlainText);
        QCOMPARE(label->styleSheet(), QString());
    }

    void aLongNameIsShownWhole()
    {
        QMainWindow window;
        const QString host = u"a1b2c3d4e5f6a7b8c9d0e1f2a3b4c5d6-1234567890.eu-central-1.trading.example"_s;
        StatusPanel panel(*window.statusBar(), host);
        const QString email
            = u"first.second.third-fourth+trading@a-long-name-of-a-department.company.example"_s;
        panel.setUser(email);
        QCOMPARE(text(window, u"userLabel"_s), email);
        QVERIFY(text(window, u"connectionLabel"_s).endsWith(host));
    }

    void anEndlessNameIsShortened()
    {
        QMainWindow window;
        const QString endless(100'000, u'x');
        const QString shown = QString(300, u'x') + u'…';
        StatusPanel panel(*window.statusBar(), endless);
        panel.setUser(endless);
        QCOMPARE(text(window, u"userLabel"_s), shown);
        QVERIFY(text(window, u"connectionLabel"_s).endsWith(u" — "_s + shown));
    }

    void latencyIsInParentheses()
    {
        QMainWindow window;
        StatusPanel panel(*window.statusBar(), u"s"_s);
        panel.setLatency(42);
        QCOMPARE(text(window, u"latencyLabel"_s), u"(42 ms)"_s);
    }

    void trafficIsShownInKilobytes()
    {
        QMainWindow window;
        StatusPanel panel(*window.statusBar(), u"s"_s);
        QCOMPARE(text(window, u"trafficLabel"_s), u"<span style='color:#26d367'>●</span> 0.0 / 0.0 Kb"_s);
        panel.setTraffic(2048, 512);
        QTRY_COMPARE(text(window, u"trafficLabel"_s), u"<span style='color:#26d367'>●</span> 2.0 / 0.5 Kb"_s);
    }

    void aPriceIsNotHeldUpByTheTrafficItMakes()
    {
        QMainWindow window;
        StatusPanel panel(*window.statusBar(), u"s"_s);
        window.show();
        PaintCounter paints(*window.statusBar()->findChild<QLabel*>(u"trafficLabel"_s));
        paints.taken();
        panel.setTraffic(2048, 512);
        QCOMPARE(paints.taken(), 0);
        QTRY_COMPARE(paints.count(), 1);
    }

    void floodOfTrafficIsShownOnceAndEndsRight()
    {
        QMainWindow window;
        StatusPanel panel(*window.statusBar(), u"s"_s);
        const QLabel& label = *window.statusBar()->findChild<QLabel*>(u"trafficLabel"_s);
        const QString before = label.text();
        for (quint64 i = 1; i <= 10'000; ++i)
            panel.setTraffic(i * 1024, 0);
        QTRY_VERIFY(label.text() != before);
        QVERIFY(text(window, u"trafficLabel"_s).contains(u"> 10000.0 / "_s));
    }

    void idleMessageComesBack()
    {
        QMainWindow window;
        const StatusPanel panel(*window.statusBar(), u"s"_s);
        window.statusBar()->showMessage(u"Opens a chart"_s);
        QCOMPARE(window.statusBar()->currentMessage(), u"Opens a chart"_s);
        window.statusBar()->clearMessage();
        QCOMPARE(window.statusBar()->currentMessage(), u"For Help, press F1"_s);
    }

    void kilobytesKeepOneDecimal()
    {
        QCOMPARE(StatusPanel::kilobytes(0), u"0.0"_s);
        QCOMPARE(StatusPanel::kilobytes(1536), u"1.5"_s);
        QCOMPARE(StatusPanel::kilobytes(std::numeric_limits<quint64>::max()), u"18014398509481984.0"_s);
    }

    void theHostOfAnAddressIsShownOrElseAllOfIt()
    {
        QCOMPARE(StatusPanel::hostOf(u"https://example.test:8443/api"_s), u"example.test"_s);
        QCOMPARE(StatusPanel::hostOf(u"nonsense"_s), u"nonsense"_s);
        QCOMPARE(StatusPanel::hostOf(QString()), QString());
    }

    void theWheelChoosesNoAccountOnItsWay()
    {
        QMainWindow window;
        const StatusPanel panel(*window.statusBar(), u"s"_s);
        QComboBox& selector = panel.accountSelector();
        selector.addItems({u"Demo"_s, u"Wallet"_s});
        auto* centre = new QLineEdit;
        window.setCentralWidget(centre);
        window.show();
        QVERIFY(hands::arriveAt(&window));
        centre->setFocus();
        hands::turnWheel(selector, -120);
        QCOMPARE(selector.currentIndex(), 0);
        QVERIFY(centre->hasFocus());
        selector.setFocus();
        hands::turnWheel(selector, -120);
        QCOMPARE(selector.currentIndex(), 1);
    }
};

TAVORAN_TEST(tst_StatusPanel)
#include "tst_StatusPanel.moc"
