#include "mainwindow/ChartArea.h"

#include "app/base/PriceRule.h"
#include "app/base/ServerText.h"
#include "app/ui/Theme.h"
#include "chart/window/ChartWindow.h"
#include "mainwindow/ChartSubWindow.h"
#include "mainwindow/ChartsLayout.h"
#include "mainwindow/EmptyAreaHint.h"
#include "mainwindow/SavedGeometry.h"
#include "mainwindow/WindowPlacement.h"
#include "mainwindow/account/AccountBook.h"
#include "net/records/PriceSnapshot.h"
#include "net/records/SymbolRecord.h"

#include <QEvent>
#include <QJsonObject>
#include <QMdiSubWindow>
#include <QPainter>
#include <QTabBar>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr auto defaultTimeframe = "15m"_L1;
constexpr QSize leastSize(160, 120);

ChartWindow* chartIn(const QMdiSubWindow* subWindow)
{
    return subWindow ? qobject_cast<ChartWindow*>(subWindow->widget()) : nullptr;
}

/// For loops in which an expert may end any of the charts.
QList<QPointer<ChartWindow>> guarded(const QList<ChartWindow*>& charts)
{
    return {charts.begin(), charts.end()};
}

/// Where an unmaximized sub-window was; invalid when that cannot be read. QWidget::restoreGeometry() would
/// move the window down to make room for a title bar above it, but a sub-window has its title bar inside.
QRect savedRectangle(const QByteArray& geometry)
{
    const std::optional<SavedGeometry> saved = SavedGeometry::read(geometry);
    return saved ? saved->rectangle : QRect();
}

} // namespace

ChartArea::ChartArea(ApiClient& api, const AccountBook& book, QWidget* parent)
    : QMdiArea(parent)
    , m_api(api)
    , m_book(book)
{
    setViewMode(QMdiArea::TabbedView);
    setTabPosition(QTabWidget::South);
    setTabsClosable(true);
    setTabsMovable(true);
    tabBar()->setExpanding(false);
    setBackground(QBrush(themeBackdropColor()));
    showHint(true);
}

ChartArea::~ChartArea()
{
    // The experts end here, while the area is whole, since their last words may close any chart.
    for (const QPointer<ChartWindow>& chart : guarded(charts())) {
        if (chart)
            chart->detachExpert();
    }
}

ChartWindow* ChartArea::openChart(const QString& symbol)
{
    const QMdiSubWindow* current = currentSubWindow();
    const bool maximized = !current || current->isMaximized();
    QMdiSubWindow* subWindow = addChart(symbol, defaultTimeframe, {});
    if (maximized) {
        subWindow->showMaximized();
    } else {
        subWindow->show();
        keepInside(*subWindow);
    }
    setActiveSubWindow(subWindow);
    return chartIn(subWindow);
}

void ChartArea::cascade()
{
    cascadeSubWindows();
    for (QMdiSubWindow* subWindow : subWindowList())
        keepInside(*subWindow);
}

void ChartArea::keepInside(QMdiSubWindow& subWindow) const
{
    // Qt gives them the size that they would like, and the time scale lies at the lower edge.
    const QRect place = subWindow.geometry();
    const QSize room(viewport()->width() - place.x(), viewport()->height() - place.y());
    subWindow.resize(place.size().boundedTo(room).expandedTo(subWindow.minimumSizeHint()));
}

QMdiSubWindow* ChartArea::addChart(const QString& symbol, const QString& timeframe, const QJsonObject& state)
{
    const int digits = m_book.digits().value(symbol, usualPriceDigits);
    auto* chart = new ChartWindow(m_api, symbol, timeframe, m_book.currentAccountId(), digits);
    Q_EMIT chartOpened(*chart);
    chart->restoreState(state);
    handOverEverything(*chart);

    QMdiSubWindow* subWindow = addSubWindow(new ChartSubWindow(*chart));
    const auto name = [this, chart, subWindow] {
        subWindow->setWindowTitle(oneLine(chart->title()));
        nameTab(subWindow);
    };
    connect(chart, &ChartWindow::titleChanged, subWindow, name);
    // Qt copies the title to the tab, where an ampersand would mark a letter.
    connect(subWindow, &QWidget::windowTitleChanged, this, [this, subWindow] { nameTab(subWindow); });
    showHint(false);
    name();
    chart->load();
    return subWindow;
}

void ChartArea::handOverEverything(ChartWindow& chart)
{
    describe(chart);
    chart.setTrades(m_book.openTrades(), m_book.pendingOrders());
    if (const auto summary = m_book.summary())
        chart.setAccountFigures(summary->balance, summary->equity);
    if (const auto quote = m_book.quote(chart.symbol()))
        chart.onQuote(*quote);
    if (m_book.isQuoteOld(chart.symbol()))
        chart.noteInterruption();
}

void ChartArea::describe(ChartWindow& chart)
{
    const QString symbol = chart.symbol();
    const auto record = m_book.symbolsByName().constFind(symbol);
    if (record != m_book.symbolsByName().cend()) {
        chart.setSymbolInfo(m_book.digits().value(symbol), shownSentence(symbol::description(*record)));
    } else if (!m_book.symbolsByName().isEmpty() && !m_reportedUnlisted.contains(symbol)) {
        m_reportedUnlisted.insert(symbol);
        Q_EMIT logMessage(tr("Chart"), tr("%1: the server does not list this symbol").arg(shownName(symbol)));
    }
}

QTabBar* ChartArea::tabBar() const
{
    return findChild<QTabBar*>(QString(), Qt::FindDirectChildrenOnly);
}

void ChartArea::nameTab(QMdiSubWindow* subWindow)
{
    QTabBar* const bar = tabBar();
    const qsizetype index = subWindowList().indexOf(subWindow);
    if (index < 0 || index >= bar->count())
        return;
    const auto tab = static_cast<int>(index);
    bar->setTabText(tab, menuText(subWindow->windowTitle()));
    for (const auto side : {QTabBar::LeftSide, QTabBar::RightSide}) {
        if (QWidget* closeButton = bar->tabButton(tab, side))
            //: %1 the title of a chart
            closeButton->setAccessibleName(tr("Close %1").arg(subWindow->windowTitle()));
    }
}

QMdiSubWindow* ChartArea::frontSubWindow() const
{
    if (QMdiSubWindow* current = currentSubWindow())
        return current;
    // Before the area is shown Qt names no active chart; the one that was activated last is in front all the
    // same.
    const QList<QMdiSubWindow*> history = subWindowList(QMdiArea::ActivationHistoryOrder);
    return history.isEmpty() ? nullptr : history.constLast();
}

ChartWindow* ChartArea::activeChart() const
{
    return chartIn(frontSubWindow());
}

QList<ChartWindow*> ChartArea::charts() const
{
    QList<ChartWindow*> charts;
    const QList<QMdiSubWindow*> subWindows = subWindowList();
    for (const QMdiSubWindow* subWindow : subWindows) {
        if (ChartWindow* chart = chartIn(subWindow))
            charts.append(chart);
    }
    return charts;
}

QString ChartArea::saveLayout() const
{
    QList<SavedChart> saved;
    const QList<QMdiSubWindow*> subWindows = subWindowList();
    for (const QMdiSubWindow* subWindow : subWindows) {
        if (const ChartWindow* chart = chartIn(subWindow)) {
            saved.append({chart->symbol(), chart->timeframe(), subWindow->saveGeometry(),
                subWindow->isMaximized(), chart->saveState()});
        }
    }
    return chartsLayoutText(saved);
}

void ChartArea::restoreLayout(const QString& text)
{
    m_placements.clear();
    const QList<SavedChart> saved = readChartsLayout(text);
    for (const SavedChart& chart : saved) {
        QMdiSubWindow* subWindow = addChart(chart.symbol, chart.timeframe, chart.state);
        subWindow->show();
        m_placements.append({subWindow, chart.geometry, chart.maximized});
    }
    applyPlacements();
}

// Painted, but for screen readers it is the area's description. A chart that is not maximized uncovers only a
// part of the area, so all of it is painted anew.
void ChartArea::showHint(bool shown)
{
    setAccessibleDescription(
        shown ? tr(
            "To open a chart, double-click a symbol in Market Watch, or select one there and press Enter.")
              : QString());
    // Without a tab it cannot be seen, and the keyboard would be nowhere in it.
    tabBar()->setEnabled(!shown);
    viewport()->update();
}

bool ChartArea::viewportEvent(QEvent* event)
{
    const bool handled = QMdiArea::viewportEvent(event);
    if (event->type() == QEvent::ChildRemoved)
        showHint(subWindowList().isEmpty());
    return handled;
}

void ChartArea::paintEvent(QPaintEvent* event)
{
    QMdiArea::paintEvent(event);
    if (const QString hint = accessibleDescription(); !hint.isEmpty()) {
        QPainter painter(viewport());
        paintEmptyAreaHint(painter, viewport()->rect(), hint, themeTextColor());
    }
}

void ChartArea::applyPlacements()
{
    for (const Placement& placement : std::as_const(m_placements)) {
        if (placement.subWindow)
            restoreGeometry(placement.subWindow, placement.geometry);
    }
    // Activation moves the maximized state from one sub-window to the next, so it is given last.
    for (const Placement& placement : std::as_const(m_placements)) {
        if (!placement.subWindow || !placement.maximized)
            continue;
        setActiveSubWindow(placement.subWindow);
        placement.subWindow->showMaximized();
    }
    if (isVisible())
        m_placements.clear();
}

void ChartArea::showEvent(QShowEvent* event)
{
    QMdiArea::showEvent(event);
    applyPlacements();
}

void ChartArea::restoreGeometry(QMdiSubWindow* subWindow, const QByteArray& geometry)
{
    const QRect before = subWindow->geometry();
    if (geometry.isEmpty() || !subWindow->restoreGeometry(geometry))
        return;
    QRect wanted = subWindow->isMaximized() ? subWindow->normalGeometry() : savedRectangle(geometry);
    subWindow->setWindowState(Qt::WindowNoState);
    if (!wanted.isValid())
        wanted = before;
    const QRect placed = placedOnScreen(wanted, {QRect(QPoint(), window()->size())});
    subWindow->setGeometry(QRect(placed.topLeft(), placed.size().expandedTo(leastSize)));
}

void ChartArea::showQuotes(const PriceSnapshot& prices)
{
    for (const QPointer<ChartWindow>& chart : guarded(charts())) {
        const Quote* quote = chart ? prices.find(chart->symbol()) : nullptr;
        if (quote)
            chart->onQuote(*quote);
    }
}

void ChartArea::applyTrades()
{
    for (ChartWindow* chart : charts())
        chart->setTrades(m_book.openTrades(), m_book.pendingOrders());
}

void ChartArea::applyAccount()
{
    for (ChartWindow* chart : charts())
        chart->setAccountId(m_book.currentAccountId());
}

void ChartArea::applySummary()
{
    const auto summary = m_book.summary();
    if (!summary)
        return;
    for (ChartWindow* chart : charts())
        chart->setAccountFigures(summary->balance, summary->equity);
}

void ChartArea::applySymbols()
{
    const auto isListed = [this](const QString& symbol) { return m_book.symbolsByName().contains(symbol); };
    const QList<ChartWindow*> charts = this->charts();
    for (ChartWindow* chart : charts) {
        describe(*chart);
        // The server has refused what the chart asked for while its symbol was not listed.
        if (m_reportedUnlisted.contains(chart->symbol()) && isListed(chart->symbol()))
            chart->loadAgain();
    }
    erase_if(m_reportedUnlisted, isListed);
}

void ChartArea::noteInterruption()
{
    m_interrupted = true;
    for (ChartWindow* chart : charts())
        chart->noteInterruption();
}

void ChartArea::catchUp()
{
    if (!std::exchange(m_interrupted, false))
        return;
    for (ChartWindow* chart : charts())
        chart->catchUp();
}

void ChartArea::setTimeframe(const QString& key)
{
    if (ChartWindow* chart = activeChart())
        chart->setTimeframe(key);
}

void ChartArea::closeActiveChart()
{
    if (QMdiSubWindow* subWindow = frontSubWindow())
        subWindow->close();
}

void ChartArea::changeEvent(QEvent* event)
{
    QMdiArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange) {
        const QBrush backdrop(themeBackdropColor());
        if (backdrop != background())
            setBackground(backdrop);
    }
}
