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
#include "support/LiveObjects.h"

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
/// For as long a trade is waited for that a window needs.
constexpr int answerPatienceMs = 10'000;

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
    const auto openBy = [this](QAction* action) {
        return [action, this] {
            action->trigger();
            return lookForWindow();
        };
    };
    const auto trigger = [](QAction* action) {
        return [action] {
            action->trigger();
            return true;
        };
    };
    m_activities = {
        {u"timeframe switches"_s, 30,
            [this] {
                const QList<QAction*> keys = m_actions->timeframes->actions();
                ChartWindow* chart = someChart();
                if (!chart)
                    return false;
                m_area->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(chart->parentWidget()));
                const QString before = chart->timeframe();
                QAction* key = keys.at(chance(keys.size()));
                (key->isChecked() ? keys.at((keys.indexOf(key) + 1) % keys.size()) : key)->trigger();
                return chart->timeframe() != before;
            }},
        {u"order dialogs"_s, 8, [this] { return openOrder(); }},
        {u"modify dialogs"_s, 4, [this] { return modify(); }},
        {u"trade menus"_s, 6, [this] { return workTradeMenu(); }},
        {u"quick trades"_s, 3,
            [this] {
                const bool hasRoom = m_book->openTrades().size() < mostTrades;
                if (hasRoom)
                    trade();
                return hasRoom;
            }},
        {u"depth windows"_s, 4, openBy(m_actions->depthOfMarket)},
        {u"specifications"_s, 4,
            [this] {
                m_window.showSpecification(someSymbol());
                return lookForWindow();
            }},
        {u"about boxes"_s, 3, openBy(m_actions->about)},
        {u"popup prices"_s, 4, openBy(m_actions->popupPrices)},
        {u"chart properties"_s, 4, openBy(m_actions->properties)},
        {u"data windows"_s, 4, openBy(m_actions->dataWindow)},
        {u"sign-in dialogs"_s, 2,
            [this] {
                showSignIn();
                return lookForWindow();
            }},
        {u"chart menus"_s, 4, [this] { return showChartMenu(); }},
        {u"theme switches"_s, 4,
            [this] {
                QAction* other
                    = m_actions->darkTheme->isChecked() ? m_actions->lightTheme : m_actions->darkTheme;
                other->trigger();
                return other->isChecked();
            }},
        {u"charts opened"_s, 4,
            [this] {
                const qsizetype before = m_area->charts().size();
                if (before < mostCharts)
                    m_window.openChart(someSymbol());
                return m_area->charts().size() > before;
            }},
        {u"charts closed"_s, 4,
            [this] {
                const qsizetype before = m_area->charts().size();
                if (before > usualCharts)
                    m_area->closeActiveChart();
                return m_area->charts().size() < before;
            }},
        {u"experts attached or detached"_s, 6, [this] { return switchExpert(); }},
        {u"algo trading switches"_s, 2,
            [this] {
                const bool before = m_actions->algoTrading->isChecked();
                m_actions->algoTrading->trigger();
                return m_actions->algoTrading->isChecked() != before;
            }},
        {u"alerts added"_s, 5, [this] { return addAlert(); }},
        {u"alerts deleted"_s, 2, [this] { return deleteAlerts(); }},
        {u"drawings"_s, 6, [this] { return draw(); }},
        {u"averages"_s, 3, [this] { return addAverage(); }},
        {u"indicator panes"_s, 3,
            [this] {
                ChartWindow* chart = someChart();
                if (chart)
                    chart->showPane(IndicatorKind::Rsi, chance(2) == 0);
                return chart != nullptr;
            }},
        {u"chart types"_s, 3,
            [this] {
                ChartWindow* chart = someChart();
                if (chart)
                    chart->setChartType(chance(3));
                return chart != nullptr;
            }},
        {u"pointer moves and zooms"_s, 8, [this] { return pointAtChart(); }},
        {u"toolbox tabs"_s, 4,
            [this] {
                auto* toolbox = m_window.findChild<TerminalPane*>();
                const int before = toolbox->currentIndex();
                toolbox->setCurrentIndex((before + 1 + chance(toolbox->count() - 1)) % toolbox->count());
                return toolbox->currentIndex() != before;
            }},
        {u"symbols chosen"_s, 3, [this] { return chooseSymbol(); }},
        {u"accounts chosen"_s, 2,
            [this] {
                auto* accounts = m_window.findChild<QComboBox*>(u"accountSelector"_s);
                const int before = accounts->currentIndex();
                if (accounts->count() > 1)
                    accounts->setCurrentIndex(
                        (before + 1 + chance(accounts->count() - 1)) % accounts->count());
                return accounts->currentIndex() != before;
            }},
        {u"windows tiled or cascaded"_s, 2,
            [this] {
                (chance(2) ? m_actions->tile : m_actions->cascade)->trigger();
                return true;
            }},
        {u"layouts restored"_s, 1, trigger(m_actions->restoreLayout)},
        {u"window sizes"_s, 2,
            [this] {
                const QSize before = m_window.size();
                m_window.resize(1000 + chance(280), 700 + chance(100));
                return m_window.size() != before;
            }},
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
    ++m_begun;
    m_doing = activity.name;
    m_openBefore = openWindows(); // one that does not close is no effect of the next thing
    if (activity.begin())
        noteDone();
}

void Trader::noteDone()
{
    ++m_done[m_doing];
}

QStringList Trader::neverDone() const
{
    QStringList names;
    for (const Activity& activity : m_activities) {
        if (!m_done.contains(activity.name))
            names.append(activity.name);
    }
    return names;
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

QWidgetList Trader::openWindows() const
{
    QWidgetList windows = QApplication::topLevelWidgets();
    windows.removeIf([this](const QWidget* window) {
        return window == &m_window || !window->isVisible() || window->windowType() == Qt::ToolTip
            || window->inherits("QDockWidget");
    });
    return windows;
}

bool Trader::lookForWindow()
{
    then([this] {
        const QWidgetList open = openWindows();
        if (std::any_of(
                open.begin(), open.end(), [this](QWidget* each) { return !m_openBefore.contains(each); }))
            noteDone();
    });
    return false;
}

void Trader::closeOpenWindows() const
{
    if (QWidget* popup = QApplication::activePopupWidget())
        popup->close();
    const QWidgetList windows = openWindows();
    for (QWidget* window : windows)
        window->close();
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

bool Trader::openOrder()
{
    m_actions->newOrder->trigger();
    lookForWindow();
    then([this] {
        auto* dialog = openWindow<OrderDialog>();
        if (dialog && chance(2) == 0 && m_book->openTrades().size() < mostTrades)
            click(dialog->findChild<QWidget*>(chance(2) ? u"orderBuy"_s : u"orderSell"_s));
    });
    then([] {});
    return false;
}

void Trader::trade()
{
    m_window.onQuickTrade(someSymbol(), chance(2) ? u"BUY"_s : u"SELL"_s, 0.01);
}

void Trader::withTrade(std::function<void(const QJsonObject&)> move)
{
    if (const QJsonObject found = someTrade(); !found.isEmpty())
        return move(found);
    trade();
    QElapsedTimer waiting;
    waiting.start();
    waitForTrade(std::move(move), waiting);
}

void Trader::waitForTrade(std::function<void(const QJsonObject&)> move, const QElapsedTimer& waiting)
{
    m_next.push_front([this, move = std::move(move), waiting] {
        if (const QJsonObject found = someTrade(); !found.isEmpty())
            move(found);
        else if (!waiting.hasExpired(answerPatienceMs))
            waitForTrade(move, waiting);
    });
}

bool Trader::workTradeMenu()
{
    withTrade([this](const QJsonObject& trade) {
        m_window.onTradeContextMenu(m_window.mapToGlobal(QPoint(300, 300)), trade);
    });
    lookForWindow();
    if (chance(3) == 0) // a glance
        return false;
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
    return false;
}

bool Trader::modify()
{
    withTrade([this](const QJsonObject& trade) { m_window.onTradeDoubleClicked(trade); });
    lookForWindow();
    then([this] {
        auto* dialog = openWindow<ModifyDialog>();
        if (dialog && chance(2) == 0)
            click(dialog->findChild<QWidget*>(u"modifyButton"_s));
    });
    then([] {});
    return false;
}

bool Trader::addAlert()
{
    auto* pane = m_window.findChild<AlertsPane*>();
    if (pane->findChild<QTreeWidget*>(u"alertsList"_s)->topLevelItemCount() >= mostAlerts) {
        deleteAlerts();
        return false;
    }
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
        noteDone();
    });
    return false;
}

bool Trader::deleteAlerts()
{
    auto* list = m_window.findChild<QTreeWidget*>(u"alertsList"_s);
    const int atFirst = list->topLevelItemCount();
    while (list->topLevelItemCount() > std::min(mostAlerts / 2, atFirst - 1)) {
        const int before = list->topLevelItemCount();
        list->setCurrentItem(list->topLevelItem(0));
        m_window.findChild<AlertsPane*>()->findChildren<QPushButton*>().constLast()->click();
        if (list->topLevelItemCount() == before)
            break;
    }
    return list->topLevelItemCount() < atFirst;
}

bool Trader::draw()
{
    ChartWindow* window = someChart();
    if (!window)
        return false;
    const QPointer<ChartWidget> chart = &window->chart();
    const QPoint first(
        40 + chance(std::max(1, chart->width() / 2)), 40 + chance(std::max(1, chart->height() / 2)));
    const QPoint second = first + QPoint(30 + chance(40), 20 + chance(30));
    static constexpr const char16_t* tools[] = {u"hline", u"vline", u"trendline", u"rectangle", u"fibonacci"};
    const auto clickAt = [chart](const QPoint& place) {
        if (chart)
            QTest::mouseClick(chart, Qt::LeftButton, {}, place);
    };
    const qsizetype before = chart->drawings().size();
    if (before < mostDrawings)
        window->setTool(QString::fromUtf16(tools[chance(std::ssize(tools))]));
    then([clickAt, first] { clickAt(first); });
    then([clickAt, second] { clickAt(second); });
    then([this, before, chart = QPointer(window)] {
        if (!chart)
            return;
        chart->setTool({});
        if (chart->chart().drawings().size() > before)
            noteDone();
    });
    // The one that lies here goes again.
    then([clickAt, first] { clickAt(first); });
    then([chart = QPointer(window)] {
        if (chart)
            chart->deleteSelectedDrawing();
    });
    return false;
}

bool Trader::switchExpert()
{
    ChartWindow* chart = someChart();
    if (!chart)
        return false;
    const bool was = !chart->expertName().isEmpty();
    if (was)
        chart->detachExpert();
    else
        chart->attachExpert(m_script);
    return chart->expertName().isEmpty() == was;
}

bool Trader::addAverage()
{
    ChartWindow* chart = someChart();
    if (!chart)
        return false;
    if (chart->chart().movingAverages().size() >= 3) {
        chart->removeMovingAverages();
        return false;
    }
    chart->addIndicator(chance(2) ? IndicatorKind::Sma : IndicatorKind::Ema);
    then([this, period = 2 + chance(100), taken = chance(4) != 0] {
        auto* dialog = openWindow<QInputDialog>();
        if (!dialog)
            return;
        noteDone();
        dialog->setIntValue(period);
        if (taken)
            dialog->accept();
    });
    return false;
}

bool Trader::pointAtChart()
{
    ChartWindow* window = someChart();
    if (!window)
        return false;
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
    return true;
}

bool Trader::showChartMenu()
{
    ChartWindow* window = someChart();
    if (!window)
        return false;
    const QPoint place(window->width() / 2, window->height() / 2);
    QApplication::postEvent(
        window, new QContextMenuEvent(QContextMenuEvent::Mouse, place, window->mapToGlobal(place)));
    return lookForWindow();
}

void Trader::showSignIn() const
{
    auto* dialog = new LoginDialog(TerminalSettings::instance());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->show();
}

bool Trader::chooseSymbol()
{
    auto* list = m_window.findChild<QTreeWidget*>(u"marketWatchSymbols"_s);
    if (list->topLevelItemCount() > 0)
        list->setCurrentItem(list->topLevelItem(chance(list->topLevelItemCount())));
    return list->topLevelItemCount() > 0;
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
