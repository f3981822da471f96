#include "soak/Trader.h"

#include "chart/data/IndicatorTable.h"
#include "chart/series/Timeframe.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/ChartWindow.h"
#include "mainwindow/ChartArea.h"
#include "mainwindow/ExpertsFolder.h"
#include "mainwindow/MainWindow.h"
#include "mainwindow/TerminalActions.h"
#include "mainwindow/account/AccountBook.h"
#include "net/records/TradeRecord.h"
#include "net/signin/LoginDialog.h"
#include "orders/ModifyDialog.h"
#include "orders/OrderDialog.h"
#include "panes/AlertDialog.h"
#include "panes/AlertsPane.h"
#include "panes/TerminalPane.h"
#include "soak/LiveObjects.h"

#include "app/base/TerminalSettings.h"

#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QDir>
#include <QDoubleSpinBox>
#include <QInputDialog>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QTreeWidget>
#include <QWheelEvent>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace {

constexpr int usualCharts = 4;
constexpr int mostCharts = 8;
constexpr int mostTrades = 10;
constexpr int mostAlerts = 12;
constexpr int mostDrawings = 10;

/// Works at every tick, but trades and speaks seldom: the examples do so at each, and a flood of prices would
/// make of that a flood of lines.
constexpr char scriptText[] = R"(
var ticks = 0;
function OnTick() {
    if (Bars() < 60)
        return;
    Comment("averages " + iMA(10, MODE_EMA, 1) + " " + iMA(50, MODE_SMA, 1) + " strength " + iRSI(14, 1));
    if (++ticks % 2000 === 1)
        Print("tick " + ticks);
    if (ticks % 2000 === 1000 && Positions.count() === 0)
        Trade.buy(0.01, { slPoints: 3000, tpPoints: 6000 });
    else if (ticks % 2000 === 1999 && Positions.count() > 0)
        Trade.closeAll();
}
)";

void click(QWidget* button)
{
    if (auto* found = qobject_cast<QAbstractButton*>(button); found && found->isEnabled())
        found->click();
}

} // namespace

Trader::Trader(MainWindow& window, quint32 seed)
    : m_random(seed)
    , m_script(QDir(ExpertsFolder::defaultPath()).filePath(u"Soak.js"_s))
    , m_window(window)
    , m_actions(window.findChild<TerminalActions*>())
    , m_area(window.findChild<ChartArea*>())
    , m_book(liveobjects::first<AccountBook>())
{
    QFile script(m_script);
    if (!script.open(QIODevice::WriteOnly) || script.write(scriptText) < 0)
        qFatal("%s cannot be written", qUtf8Printable(m_script));
    listActivities();
    for (const Activity& activity : m_activities)
        m_weights += activity.weight;
}

Trader::~Trader() = default;

void Trader::listActivities()
{
    const auto trigger = [this](QAction* action) {
        return [action, this] {
            action->trigger();
            then([] {}); // it stays for a turn
        };
    };
    m_activities = {
        {u"timeframe switches"_s, 30,
            [this] {
                const QList<QAction*> keys = m_actions->timeframes->actions();
                if (ChartWindow* chart = someChart())
                    m_area->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(chart->parentWidget()));
                keys.at(chance(keys.size()))->trigger();
            }},
        {u"order dialogs"_s, 8, [this] { openOrder(); }},
        {u"modify dialogs"_s, 4, [this] { modify(); }},
        {u"trade menus"_s, 6, [this] { workTradeMenu(); }},
        {u"quick trades"_s, 3,
            [this] {
                if (m_book->openTrades().size() < mostTrades)
                    m_window.onQuickTrade(someSymbol(), chance(2) ? u"BUY"_s : u"SELL"_s, 0.01);
            }},
        {u"depth windows"_s, 4, trigger(m_actions->depthOfMarket)},
        {u"specifications"_s, 4,
            [this] {
                m_window.showSpecification(someSymbol());
                then([] {});
            }},
        {u"about boxes"_s, 3, trigger(m_actions->about)},
        {u"popup prices"_s, 4, trigger(m_actions->popupPrices)},
        {u"chart properties"_s, 4, trigger(m_actions->properties)},
        {u"data windows"_s, 4, trigger(m_actions->dataWindow)},
        {u"sign-in dialogs"_s, 2,
            [this] {
                showSignIn();
                then([] {});
            }},
        {u"chart menus"_s, 4, [this] { showChartMenu(); }},
        {u"theme switches"_s, 4,
            [this] {
                QAction* other
                    = m_actions->darkTheme->isChecked() ? m_actions->lightTheme : m_actions->darkTheme;
                other->trigger();
            }},
        {u"charts opened"_s, 4,
            [this] {
                if (m_area->charts().size() < mostCharts)
                    m_window.openChart(someSymbol());
            }},
        {u"charts closed"_s, 4,
            [this] {
                if (m_area->charts().size() > usualCharts)
                    m_area->closeActiveChart();
            }},
        {u"experts attached or detached"_s, 6, [this] { switchExpert(); }},
        {u"algo trading switches"_s, 2, [this] { m_actions->algoTrading->trigger(); }},
        {u"alerts added"_s, 5, [this] { addAlert(); }},
        {u"alerts deleted"_s, 2, [this] { deleteAlerts(); }},
        {u"drawings"_s, 6, [this] { draw(); }},
        {u"averages"_s, 3, [this] { addAverage(); }},
        {u"indicator panes"_s, 3,
            [this] {
                if (ChartWindow* chart = someChart())
                    chart->showPane(IndicatorKind::Rsi, chance(2) == 0);
            }},
        {u"chart types"_s, 3,
            [this] {
                if (ChartWindow* chart = someChart())
                    chart->setChartType(chance(3));
            }},
        {u"pointer moves and zooms"_s, 8, [this] { pointAtChart(); }},
        {u"toolbox tabs"_s, 4,
            [this] {
                auto* toolbox = m_window.findChild<TerminalPane*>();
                toolbox->setCurrentIndex(chance(toolbox->count()));
            }},
        {u"symbols chosen"_s, 3, [this] { chooseSymbol(); }},
        {u"accounts chosen"_s, 2,
            [this] {
                auto* accounts = m_window.findChild<QComboBox*>(u"accountSelector"_s);
                if (accounts->count() > 0)
                    accounts->setCurrentIndex(chance(accounts->count()));
            }},
        {u"windows tiled or cascaded"_s, 2,
            [this] { (chance(2) ? m_actions->tile : m_actions->cascade)->trigger(); }},
        {u"layouts restored"_s, 1, trigger(m_actions->restoreLayout)},
        {u"window sizes"_s, 2, [this] { m_window.resize(1000 + chance(280), 700 + chance(100)); }},
        {u"histories refreshed"_s, 3, trigger(m_actions->refresh)},
    };
}

void Trader::turn()
{
    if (m_next.empty()) {
        closeOpenWindows();
        int place = chance(m_weights);
        for (const Activity& activity : m_activities) {
            place -= activity.weight;
            if (place < 0)
                return begin(activity);
        }
    }
    const std::function<void()> move = m_next.front();
    m_next.pop_front();
    move();
}

void Trader::begin(const Activity& activity)
{
    ++m_done[activity.name];
    m_doing = activity.name;
    activity.begin();
}

void Trader::doEachOnce()
{
    for (const Activity& activity : m_activities) {
        then([this, &activity] {
            // What this begins comes before the other activities.
            std::deque<std::function<void()>> rest;
            rest.swap(m_next);
            closeOpenWindows();
            begin(activity);
            for (std::function<void()>& move : rest)
                m_next.push_back(std::move(move));
        });
    }
}

int Trader::total() const
{
    int sum = 0;
    for (const int count : m_done)
        sum += count;
    return sum;
}

void Trader::clearDesk()
{
    m_next.clear();
    closeOpenWindows();
    if (m_actions->algoTrading->isChecked())
        m_actions->algoTrading->trigger();
    while (!m_area->charts().isEmpty()) {
        const qsizetype before = m_area->charts().size();
        m_area->closeActiveChart();
        if (m_area->charts().size() == before)
            break;
    }
    while (m_area->charts().size() < usualCharts && !m_book->symbols().isEmpty())
        m_window.openChart(m_book->symbolNames().value(m_area->charts().size()));
    m_actions->tile->trigger();
    m_actions->darkTheme->trigger();
    m_window.findChild<QComboBox*>(u"accountSelector"_s)->setCurrentIndex(m_book->preferredIndex());
    m_window.findChild<TerminalPane*>()->setCurrentIndex(0);
    m_window.resize(1280, 800);
}

void Trader::closeOpenWindows() const
{
    if (QWidget* popup = QApplication::activePopupWidget())
        popup->close();
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        const bool stays = window == &m_window || !window->isVisible() || window->windowType() == Qt::ToolTip
            || window->inherits("QDockWidget");
        if (!stays)
            window->close();
    }
    // Below a popup that was closed there may be another one.
    while (QWidget* popup = QApplication::activePopupWidget()) {
        if (!popup->close())
            break;
    }
}

template <typename Widget> Widget* Trader::openWindow() const
{
    const QList<Widget*> found = m_window.findChildren<Widget*>();
    for (Widget* window : found) {
        if (window->isVisible())
            return window;
    }
    return nullptr;
}

void Trader::openOrder()
{
    m_actions->newOrder->trigger();
    then([this] {
        auto* dialog = openWindow<OrderDialog>();
        if (dialog && chance(2) == 0 && m_book->openTrades().size() < mostTrades)
            click(dialog->findChild<QWidget*>(chance(2) ? u"orderBuy"_s : u"orderSell"_s));
    });
    then([] {});
}

void Trader::workTradeMenu()
{
    m_window.onTradeContextMenu(m_window.mapToGlobal(QPoint(300, 300)), someTrade());
    if (chance(3) == 0) // a glance
        return then([] {});
    then([this] {
        auto* menu = openWindow<QMenu>();
        if (!menu || menu->objectName() != "tradeMenu"_L1)
            return;
        QAction* first = menu->actions().constFirst();
        menu->close();
        first->trigger();
    });
    then([this] {
        if (auto* question = openWindow<QMessageBox>())
            click(question->button(chance(5) == 0 ? QMessageBox::No : QMessageBox::Yes));
    });
}

void Trader::modify()
{
    m_window.onTradeDoubleClicked(someTrade());
    then([this] {
        auto* dialog = openWindow<ModifyDialog>();
        if (dialog && chance(2) == 0)
            click(dialog->findChild<QWidget*>(u"modifyButton"_s));
    });
    then([] {});
}

void Trader::addAlert()
{
    auto* pane = m_window.findChild<AlertsPane*>();
    if (pane->findChild<QTreeWidget*>(u"alertsList"_s)->topLevelItemCount() >= mostAlerts)
        return deleteAlerts();
    pane->findChildren<QPushButton*>().constFirst()->click();
    then([this] {
        auto* dialog = openWindow<AlertDialog>();
        if (!dialog)
            return;
        // Above or below the bid as it is now: some are set off at once, some later.
        auto* price = dialog->findChild<QDoubleSpinBox*>(u"alertPrice"_s);
        price->setValue(price->value() * (1.0 + (chance(21) - 10) * 0.00005));
        dialog->findChild<QComboBox*>(u"alertCondition"_s)->setCurrentIndex(chance(2));
        dialog->accept();
    });
}

void Trader::deleteAlerts()
{
    auto* list = m_window.findChild<QTreeWidget*>(u"alertsList"_s);
    while (list->topLevelItemCount() > mostAlerts / 2) {
        const int before = list->topLevelItemCount();
        list->setCurrentItem(list->topLevelItem(0));
        m_window.findChild<AlertsPane*>()->findChildren<QPushButton*>().constLast()->click();
        if (list->topLevelItemCount() == before)
            return;
    }
}

void Trader::draw()
{
    ChartWindow* window = someChart();
    if (!window)
        return;
    const QPointer<ChartWidget> chart = &window->chart();
    const QPoint first(
        40 + chance(std::max(1, chart->width() / 2)), 40 + chance(std::max(1, chart->height() / 2)));
    const QPoint second = first + QPoint(30 + chance(40), 20 + chance(30));
    static constexpr const char16_t* tools[] = {u"hline", u"vline", u"trendline", u"rectangle", u"fibonacci"};
    const auto clickAt = [chart](const QPoint& place) {
        if (chart)
            QTest::mouseClick(chart, Qt::LeftButton, {}, place);
    };
    if (chart->drawings().size() < mostDrawings)
        window->setTool(QString::fromUtf16(tools[chance(std::ssize(tools))]));
    then([clickAt, first] { clickAt(first); });
    then([clickAt, second] { clickAt(second); });
    then([chart = QPointer(window)] {
        if (chart)
            chart->setTool({});
    });
    // The one that lies here goes again.
    then([clickAt, first] { clickAt(first); });
    then([chart = QPointer(window)] {
        if (chart)
            chart->deleteSelectedDrawing();
    });
}

void Trader::switchExpert()
{
    ChartWindow* chart = someChart();
    if (!chart)
        return;
    if (!chart->expertName().isEmpty())
        return chart->detachExpert();
    chart->attachExpert(m_script);
}

void Trader::addAverage()
{
    ChartWindow* chart = someChart();
    if (!chart)
        return;
    if (chart->chart().movingAverages().size() >= 3)
        return chart->removeMovingAverages();
    chart->addIndicator(chance(2) ? IndicatorKind::Sma : IndicatorKind::Ema);
    then([this, period = 2 + chance(100), taken = chance(4) != 0] {
        auto* dialog = openWindow<QInputDialog>();
        if (!dialog)
            return;
        dialog->setIntValue(period);
        if (taken)
            dialog->accept();
    });
}

void Trader::pointAtChart()
{
    ChartWindow* window = someChart();
    if (!window)
        return;
    ChartWidget& chart = window->chart();
    const QPoint place(chance(std::max(1, chart.width())), chance(std::max(1, chart.height())));
    QTest::mouseMove(&chart, place);
    switch (chance(4)) {
    case 0:
        window->zoomIn();
        break;
    case 1:
        window->zoomOut();
        break;
    case 2:
        QTest::mousePress(&chart, Qt::LeftButton, {}, place);
        QTest::mouseMove(&chart, place + QPoint(chance(120) - 60, 0));
        QTest::mouseRelease(&chart, Qt::LeftButton, {}, place);
        break;
    default:
        chart.scrollToEnd();
    }
}

void Trader::showChartMenu()
{
    ChartWindow* window = someChart();
    if (!window)
        return;
    const QPoint place(window->width() / 2, window->height() / 2);
    QApplication::postEvent(
        window, new QContextMenuEvent(QContextMenuEvent::Mouse, place, window->mapToGlobal(place)));
    then([] {});
}

void Trader::showSignIn() const
{
    auto* dialog = new LoginDialog(TerminalSettings::instance());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

void Trader::chooseSymbol()
{
    auto* list = m_window.findChild<QTreeWidget*>(u"marketWatchSymbols"_s);
    if (list->topLevelItemCount() > 0)
        list->setCurrentItem(list->topLevelItem(chance(list->topLevelItemCount())));
}

ChartWindow* Trader::someChart()
{
    const QList<ChartWindow*> charts = m_area->charts();
    return charts.isEmpty() ? nullptr : charts.at(chance(charts.size()));
}

QString Trader::someSymbol()
{
    const QStringList names = m_book->symbolNames();
    return names.isEmpty() ? QString() : names.at(chance(names.size()));
}

QJsonObject Trader::someTrade()
{
    QJsonArray trades = m_book->openTrades();
    for (const QJsonValue& order : m_book->pendingOrders())
        trades.append(order);
    return trades.isEmpty() ? QJsonObject() : trades.at(chance(trades.size())).toObject();
}
