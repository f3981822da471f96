#include "MainWindowFixture.h"

#include "app/ui/DecimalSpinBox.h"
#include "panes/AlertDialog.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QPushButton>
#include <QTabWidget>

using namespace Qt::StringLiterals;

/// What a new alert begins with, and what keys make of it.
class tst_MainWindowAlerts final : public QObject {
    Q_OBJECT

    struct Desk {
        MainWindowFixture f;

        Desk()
        {
            TerminalSettings::instance().setAlerts({});
            f.signInAndSettle();
            f.window->activateWindow();
            auto* page = f.window->findChild<QWidget*>(u"alertsPage"_s);
            qobject_cast<QTabWidget*>(page->parentWidget()->parentWidget())->setCurrentWidget(page);
        }
        Q_DISABLE_COPY_MOVE(Desk)
        ~Desk() { TerminalSettings::instance().setAlerts({}); }

        [[nodiscard]] QPushButton* addButton() const
        {
            const auto buttons = f.window->findChild<QWidget*>(u"alertsPage"_s)->findChildren<QPushButton*>();
            return *std::find_if(buttons.begin(), buttons.end(),
                [](const QPushButton* button) { return button->text() == u"Add Alert"_s; });
        }
        [[nodiscard]] AlertDialog* ask() const
        {
            QTest::mouseClick(addButton(), Qt::LeftButton);
            return f.window->findChild<AlertDialog*>();
        }
        [[nodiscard]] static QString shown(const AlertDialog& dialog)
        {
            return u"%1 %2 %3"_s.arg(dialog.findChild<QComboBox*>(u"alertSymbol"_s)->currentText(),
                dialog.findChild<QComboBox*>(u"alertCondition"_s)->currentText(),
                dialog.findChild<DecimalSpinBox*>()->text());
        }
        [[nodiscard]] int alerts() const { return f.list("alertsList").topLevelItemCount(); }
    };

private Q_SLOTS:
    void a_new_alert_begins_with_the_active_chart_and_its_bid()
    {
        const Desk desk;
        desk.f.window->openChart(u"EURUSD"_s);
        desk.f.window->openChart(u"USDJPY"_s);
        QCOMPARE(Desk::shown(*desk.ask()), u"USDJPY Bid ≥ 150.50000"_s);
    }

    void the_bid_is_the_one_of_the_latest_prices()
    {
        const Desk desk;
        desk.f.window->openChart(u"USDJPY"_s);
        desk.f.window->onPrices(records::prices({{"USDJPY", 149.25, 149.35}}));
        QCOMPARE(Desk::shown(*desk.ask()), u"USDJPY Bid ≥ 149.25000"_s);
    }

    void without_a_chart_it_begins_with_the_row_of_market_watch()
    {
        const Desk desk;
        QTreeWidget& watch = desk.f.list("marketWatchSymbols");
        watch.setCurrentItem(watch.topLevelItem(1));
        QCOMPARE(Desk::shown(*desk.ask()), u"USDJPY Bid ≥ 150.50000"_s);
    }

    void without_chart_and_row_it_begins_with_the_first_symbol()
    {
        const Desk desk;
        QCOMPARE(Desk::shown(*desk.ask()), u"EURUSD Bid ≥ 1.10000"_s);
    }

    void a_chart_of_an_unknown_symbol_counts_for_nothing()
    {
        const Desk desk;
        desk.f.window->openChart(u"NOBODY"_s);
        QCOMPARE(Desk::shown(*desk.ask()), u"EURUSD Bid ≥ 1.10000"_s);
    }

    void another_symbol_brings_its_bid_until_a_price_is_typed()
    {
        const Desk desk;
        AlertDialog* dialog = desk.ask();
        QVERIFY(hands::arriveAt(dialog));
        hands::press(Qt::Key_Down);
        QCOMPARE(Desk::shown(*dialog), u"USDJPY Bid ≥ 150.50000"_s);
        hands::press(Qt::Key_Tab);
        hands::press(Qt::Key_Tab);
        hands::type(u"151"_s);
        dialog->findChild<QComboBox*>(u"alertSymbol"_s)->setFocus();
        hands::press(Qt::Key_Up);
        QCOMPARE(Desk::shown(*dialog), u"EURUSD Bid ≥ 151.00000"_s);
    }

    void keys_alone_add_an_alert_and_an_enter_that_is_held_adds_none()
    {
        const Desk desk;
        desk.f.window->openChart(u"USDJPY"_s);
        QTRY_VERIFY(QApplication::focusWidget());
        desk.addButton()->setFocus(Qt::TabFocusReason);
        hands::press(Qt::Key_Space);
        const QPointer<AlertDialog> dialog = desk.f.window->findChild<AlertDialog*>();
        QVERIFY(dialog && hands::arriveAt(dialog));
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            hands::hold(key);
            QVERIFY(dialog && dialog->isVisible());
        }
        QCOMPARE(desk.alerts(), 0);
        hands::press(Qt::Key_Tab);
        hands::press(Qt::Key_Tab);
        hands::type(u"151.2"_s);
        hands::press(Qt::Key_Return);
        QTRY_VERIFY(!dialog);
        QCOMPARE(desk.alerts(), 1);
        QCOMPARE(desk.f.list("alertsList").topLevelItem(0)->text(0), u"USDJPY"_s);
        QCOMPARE(desk.f.list("alertsList").topLevelItem(0)->text(2), u"151.20000"_s);
    }
};

TAVORAN_TEST(tst_MainWindowAlerts)
#include "tst_MainWindowAlerts.moc"
