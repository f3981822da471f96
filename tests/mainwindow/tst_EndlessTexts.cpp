#include "MainWindowFixture.h"
#include "chart/layers/ChartFrame.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "panes/NavigatorWidget.h"
#include "support/LogMessages.h"
#include "support/TestMain.h"

#include <QDialog>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QJsonArray>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMessageBox>
#include <QTabBar>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype endless = 200'000;
/// Several shortened texts in one line, and the words around them.
constexpr qsizetype mostShown = 800;

QString endlessText(const QString& start)
{
    return start + QString(endless, u'x');
}

/// Every text that a widget holds ready for the eye or the screen reader, and what a chart paints.
class ShownTexts final {
public:
    /// The longest of them all, with the widget that shows it.
    static QString longest()
    {
        ShownTexts texts;
        const QWidgetList widgets = QApplication::allWidgets();
        for (const QWidget* widget : widgets)
            texts.look(*widget);
        return texts.m_longest;
    }

private:
    void note(const QWidget& widget, const QString& text)
    {
        if (text.size() <= m_length)
            return;
        m_length = text.size();
        m_longest = u"%1 characters in %2 %3: %4"_s.arg(QString::number(m_length),
            QString::fromLatin1(widget.metaObject()->className()), widget.objectName(), text.left(60));
        if (m_length <= mostShown)
            m_longest.clear();
    }
    void look(const QWidget& widget)
    {
        for (const QString& text : {widget.windowTitle(), widget.toolTip(), widget.statusTip(),
                 widget.accessibleName(), widget.accessibleDescription()})
            note(widget, text);
        for (const char* property : {"text", "informativeText", "detailedText", "placeholderText", "title"})
            note(widget, widget.property(property).toString());
        if (const auto* view = qobject_cast<const QAbstractItemView*>(&widget); view && view->model())
            look(widget, *view->model(), {});
        if (const auto* combo = qobject_cast<const QComboBox*>(&widget))
            look(widget, *combo->model(), {});
        if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) {
            for (int i = 0; i < tabs->count(); ++i)
                note(widget, tabs->tabText(i) + tabs->tabToolTip(i));
        }
        for (const QAction* action : widget.actions())
            note(widget, action->text() + action->toolTip());
        if (const auto* chart = qobject_cast<const ChartWidget*>(&widget)) {
            const ChartFrame frame = chart->frame();
            note(widget, frame.symbol + frame.description);
            for (const TradeLevel& level : frame.levels)
                note(widget, level.label);
        }
    }
    void look(const QWidget& widget, const QAbstractItemModel& model, const QModelIndex& parent)
    {
        for (int row = 0; row < model.rowCount(parent); ++row) {
            for (int column = 0; column < model.columnCount(parent); ++column) {
                const QModelIndex cell = model.index(row, column, parent);
                for (const int role : {Qt::DisplayRole, Qt::ToolTipRole, Qt::StatusTipRole})
                    note(widget, cell.data(role).toString());
            }
            look(widget, model, model.index(row, 0, parent));
        }
    }

    qsizetype m_length = 0;
    QString m_longest;
};

/// A server each of whose texts has no end.
struct EndlessServer final : MainWindowFixture {
    const QString symbol = endlessText(u"SYM"_s);

    EndlessServer()
    {
        const auto trade = records::position(endlessText(u"t"_s))
                               .symbol(symbol)
                               .at(1.1)
                               .stopLoss(1.05)
                               .with("type", endlessText(u"BUY"_s))
                               .with("orderKind", endlessText(u"KIND"_s))
                               .with("createdAt", endlessText(u"2"_s))
                               .with("closedAt", endlessText(u"2"_s))
                               .with("status", endlessText(u"OPEN"_s));
        const auto order = records::Trade(trade).with("status", "PENDING").awaits(1.2);
        server.on("GET", "/api/accounts",
            StubAnswer::list({records::account("a1").plan(endlessText(u"Plan"_s), 1),
                records::account(endlessText(u"a"_s)).status(endlessText(u"S"_s))}));
        server.on("GET", "/api/trades/open?accountId=a1", StubAnswer::list({trade}));
        server.on("GET", "/api/trades/pending", StubAnswer::list({order}));
        server.on("GET", "/api/trades/history", StubAnswer::list({trade}));
        server.on("GET", "/api/candles", StubAnswer::message(endlessText(u"candles"_s), 500));
        server.on("GET", "/api/drawings", StubAnswer::message(endlessText(u"drawings"_s), 500));
        server.on("GET", "/api/news/upcoming",
            StubAnswer::json(records::news({records::newsEvent(endlessText(u"n"_s))
                                                .title(endlessText(u"title"_s))
                                                .impact(endlessText(u"HIGH"_s))
                                                .with("currency", endlessText(u"EUR"_s))
                                                .with("eventTime", endlessText(u"2"_s))})));
        feed.setGreeting(records::hello(
            {records::symbol(symbol).described(endlessText(u"d"_s))}, records::prices({{symbol, 1.1, 1.2}})));
    }

    void signInAndWait()
    {
        signIn(endlessText(u"trader"_s));
        QTRY_VERIFY(action("New Order")->isEnabled());
        QTRY_COMPARE(list("tradeList").topLevelItemCount(), 2);
        QTRY_COMPARE(list("newsList").topLevelItemCount(), 1);
        settle();
    }
    [[nodiscard]] QPoint firstTrade() const
    {
        QTreeWidget& trades = list("tradeList");
        return trades.viewport()->mapToGlobal(trades.visualItemRect(trades.topLevelItem(0)).center());
    }
};

template <typename Widget> Widget* shownChild(const MainWindow& window)
{
    const QList<Widget*> children = window.findChildren<Widget*>();
    const auto shown
        = std::find_if(children.begin(), children.end(), [](const Widget* w) { return w->isVisible(); });
    return shown == children.end() ? nullptr : *shown;
}

} // namespace

class TestEndlessTexts final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QFile::remove(logFilePath()); }

    void lists_and_log_lines_show_no_endless_text()
    {
        EndlessServer f;
        f.signInAndWait();
        f.feed.send(records::ordersChanged().closed(endlessText(u"reason"_s)));
        f.feed.send(records::ordersChanged(endlessText(u"a"_s)).filled());
        f.feed.send(records::accountUpdate(endlessText(u"a"_s), endlessText(u"status"_s)));
        f.server.on("GET", "/api/accounts", StubAnswer::message(endlessText(u"accounts"_s), 500));
        f.feed.send(records::accountUpdate("a1", "ACTIVE"));
        QTRY_VERIFY(f.journal().filter(u"Failed to load accounts: accountsxx"_s).size() > 0);
        QTRY_COMPARE(f.journal().filter(u"Orders changed (reasonxxx"_s).size(), 1);
        QTRY_COMPARE(f.journal().filter(u"status changed to statusxxx"_s).size(), 1);

        QCOMPARE(ShownTexts::longest(), QString());
        for (const QString& line : fixtures::logMessages())
            QVERIFY2(line.size() <= mostShown, qPrintable(line.left(100)));
    }

    void a_charts_windows_show_no_endless_text()
    {
        EndlessServer f;
        f.signInAndWait();
        f.window->openChart(f.symbol);
        QTRY_VERIFY(f.journal().filter(u"failed to load candles: candlesxxx"_s).size() > 0);
        QTRY_VERIFY(f.journal().filter(u"failed to load drawings: drawingsxxx"_s).size() > 0);
        for (const char* name :
            {"Popup Prices", "Depth of Market", "Data Window", "Properties...", "Symbol Specification..."}) {
            QAction* action = f.action(name);
            QVERIFY2(action, name);
            action->trigger();
        }
        QTemporaryDir folder;
        QFile script(folder.filePath(u"Robot.js"_s));
        QVERIFY(script.open(QIODevice::WriteOnly));
        script.close();
        Q_EMIT f.window->findChild<NavigatorWidget*>()->expertActivated(script.fileName());
        QVERIFY(f.log("expertsList").filter(u"Robot: Attached to SYMxxx"_s).size() == 1);
        QVERIFY(f.charts().constFirst()->windowTitle().startsWith(u"SYMxxx"_s));
        QCOMPARE(f.charts().constFirst()->chart().tradeLevels().size(), 3);
        QVERIFY(f.charts().constFirst()->chart().frame().description.startsWith(u"dxxx"_s));
        QCOMPARE(ShownTexts::longest(), QString());
    }

    void the_close_question_shows_no_endless_text()
    {
        EndlessServer f;
        f.signInAndWait();
        const QJsonObject trade = f.list("tradeList").topLevelItem(0)->data(0, Qt::UserRole).toJsonObject();
        f.window->onTradeContextMenu(f.firstTrade(), trade);
        auto* menu = f.window->findChild<QMenu*>(u"tradeMenu"_s);
        QVERIFY(menu);
        menu->actions().constFirst()->trigger();
        auto* question = shownChild<QMessageBox>(*f.window);
        QVERIFY(question);
        QVERIFY(question->text().contains(u"SYMxxx"_s));
        QCOMPARE(ShownTexts::longest(), QString());
        question->reject();
    }

    void the_dialogs_show_no_endless_text()
    {
        EndlessServer f;
        f.signInAndWait();
        f.action("New Order")->trigger();
        f.feed.send(records::priceUpdate({{f.symbol, 1.1, 1.2}}));
        QTRY_VERIFY(f.window->findChild<QLabel*>(u"orderUnits"_s)->text().contains(u"SYM"_s));
        QCOMPARE(ShownTexts::longest(), QString());
        shownChild<QDialog>(*f.window)->reject();

        f.window->onTradeDoubleClicked(
            f.list("tradeList").topLevelItem(0)->data(0, Qt::UserRole).toJsonObject());
        QVERIFY(f.window->findChild<QLabel*>(u"modifyHeader"_s));
        QCOMPARE(ShownTexts::longest(), QString());
    }

    void requests_name_an_endless_symbol_whole()
    {
        EndlessServer f;
        f.signInAndWait();
        // As a person opens a chart: from the list, whose row shows only the beginning.
        QTreeWidget& symbols = f.list("marketWatchSymbols");
        Q_EMIT symbols.itemActivated(symbols.topLevelItem(0), 0);
        QTRY_COMPARE(f.server.count("GET", "/api/candles"), 1);
        QVERIFY(f.server.last("GET", "/api/candles").target.contains(f.symbol.toLatin1() + '&'));
        QCOMPARE(f.charts().constFirst()->symbol(), f.symbol);

        f.server.on("POST", "/api/trades/place", StubAnswer::json("{}"));
        f.action("New Order")->trigger();
        QTest::mouseClick(f.window->findChild<QPushButton*>(u"orderBuy"_s), Qt::LeftButton);
        QTRY_COMPARE(f.server.count("POST", "/api/trades/place"), 1);
        QCOMPARE(f.server.last("POST", "/api/trades/place").json()["symbol"_L1].toString(), f.symbol);
    }

    void an_alert_keeps_an_endless_symbol_whole()
    {
        EndlessServer f;
        f.signInAndWait();
        const QList<QPushButton*> buttons = f.window->findChildren<QPushButton*>();
        const auto add = std::find_if(buttons.begin(), buttons.end(),
            [](const QPushButton* button) { return button->text() == u"Add Alert"_s; });
        QVERIFY(add != buttons.end());
        (*add)->click();
        auto* dialog = shownChild<QDialog>(*f.window);
        QVERIFY(dialog);
        dialog->findChild<QDoubleSpinBox*>(u"alertPrice"_s)->setValue(1.15);
        QCOMPARE(ShownTexts::longest(), QString());
        dialog->accept();

        QTreeWidget& alerts = f.list("alertsList");
        QCOMPARE(alerts.topLevelItemCount(), 1);
        QCOMPARE(ShownTexts::longest(), QString());
        f.feed.send(records::priceUpdate({{f.symbol, 1.16, 1.2}}));
        QTRY_COMPARE(alerts.topLevelItem(0)->text(3), u"Triggered"_s);
        TerminalSettings::instance().setAlerts({});
    }

    void the_journal_hides_a_token_that_the_server_echoes()
    {
        MainWindowFixture f;
        f.signInAndSettle();
        f.feed.send(records::ordersChanged().closed("for secret-token-123"));
        f.feed.send(records::accountUpdate("Secret-Token-123", "seen"));
        QTRY_VERIFY(f.journal().contains(u"Account: Account [hidden] status changed to seen"_s));
        QVERIFY(f.journal().contains(u"Trade: Orders changed (for [hidden]) — refreshing"_s));
        QVERIFY(f.log("expertsList").contains(u"Execution: Position closed (for [hidden])"_s));
        QVERIFY(fixtures::logMessages().contains(u"[Trade] Orders changed (for [hidden]) — refreshing"_s));
    }
};

TAVORAN_TEST(TestEndlessTexts)
#include "tst_EndlessTexts.moc"
