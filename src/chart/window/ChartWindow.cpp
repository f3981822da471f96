#include "chart/window/ChartWindow.h"

#include "app/base/NumberFormat.h"
#include "app/base/PriceRule.h"
#include "app/base/ServerText.h"
#include "chart/data/AveragePalette.h"
#include "chart/data/IndicatorTable.h"
#include "chart/data/TradeLevels.h"
#include "chart/series/HistoryReply.h"
#include "chart/series/Timeframe.h"
#include "chart/window/AverageDialog.h"
#include "chart/window/ChartComment.h"
#include "chart/window/ChartExpert.h"
#include "chart/window/ChartMenu.h"
#include "chart/window/ChartPropertiesDialog.h"
#include "chart/window/ChartState.h"
#include "chart/window/ChartWidget.h"
#include "chart/window/DataWindow.h"
#include "chart/window/DrawingStore.h"
#include "chart/window/OneClickPanel.h"
#include "net/ApiClient.h"
#include "net/ReadCoalescer.h"
#include "net/UrlParts.h"
#include "net/records/Quote.h"
#include "net/records/TradeRecord.h"

#include <QContextMenuEvent>
#include <QDateTime>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

ChartWindow::ChartWindow(ApiClient& api, const QString& symbol, const QString& timeframe,
    const QString& accountId, int digits, QWidget* parent)
    : QWidget(parent)
    , m_history(new ReadCoalescer(api, this))
    , m_symbol(symbol)
    , m_timeframe(timeframe)
    , m_digits(digits)
    , m_chart(new ChartWidget(this))
    , m_drawings(new DrawingStore(api, *m_chart, symbol, accountId, this))
    , m_oneClick(new OneClickPanel(symbol, m_chart))
    , m_comment(new ChartComment(*m_oneClick, m_chart))
    , m_expert(new ChartExpert(*m_chart, symbol, this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_chart);
    setFocusProxy(m_chart);

    m_chart->setDigits(m_digits);
    m_expert->setDigits(m_digits);
    labelChart();
    placeTexts();
    setWindowTitle(title());

    connect(m_chart, &ChartWidget::crosshairMoved, this, &ChartWindow::crosshairMoved);
    connect(m_chart, &ChartWidget::autoScrollChanged, this, &ChartWindow::autoScrollChanged);
    connect(m_chart, &ChartWidget::settingsChanged, this, &ChartWindow::settingsChanged);
    connect(m_chart, &ChartWidget::levelDragged, this, &ChartWindow::modifyLevelRequested);
    connect(m_oneClick, &OneClickPanel::quickTradeRequested, this, &ChartWindow::quickTradeRequested);
    connect(m_drawings, &DrawingStore::failed, this,
        [this](const QString& message) { Q_EMIT logMessage(tr("Chart"), message); });
    connectExpert();
}

ChartWindow::~ChartWindow()
{
    // The expert's last words are still passed on, but no longer change this window.
    disconnect(m_expert, &ChartExpert::nameChanged, this, nullptr);
    m_expert->detach();
    delete m_expert;
}

void ChartWindow::connectExpert()
{
    connect(m_expert, &ChartExpert::log, this, &ChartWindow::expertLog);
    connect(m_expert, &ChartExpert::orderRequested, this, &ChartWindow::expertOrderRequested);
    connect(m_expert, &ChartExpert::closeAllRequested, this, &ChartWindow::expertCloseAllRequested);
    connect(m_expert, &ChartExpert::commentChanged, m_comment, &ChartComment::setComment);
    connect(m_expert, &ChartExpert::nameChanged, m_comment, [this] {
        if (expertName().isEmpty())
            m_comment->setComment({});
    });
    connect(m_expert, &ChartExpert::nameChanged, this, &ChartWindow::nameWindow);
}

QString ChartWindow::expertName() const
{
    return m_expert->name();
}

void ChartWindow::attachExpert(const QString& path)
{
    m_expert->attach(path);
}

void ChartWindow::detachExpert()
{
    m_expert->detach();
}

QSize ChartWindow::sizeHint() const
{
    return {640, 400};
}

QString ChartWindow::title() const
{
    const QString chart = u"%1,%2"_s.arg(shownName(m_symbol), timeframeLabel(m_timeframe));
    return expertName().isEmpty() ? chart : chart + u"  •  %1"_s.arg(expertName());
}

void ChartWindow::nameWindow()
{
    labelChart();
    setWindowTitle(title());
    Q_EMIT titleChanged(title());
}

QJsonObject ChartWindow::saveState() const
{
    return ChartState::of(*m_chart).toJson();
}

void ChartWindow::restoreState(const QJsonObject& state)
{
    ChartState::fromJson(state).applyTo(*m_chart);
    m_comment->setColors(m_chart->colors());
    m_restored = true;
}

void ChartWindow::load()
{
    reload();
    m_drawings->load();
}

void ChartWindow::loadAgain()
{
    catchUp();
    m_drawings->load();
}

void ChartWindow::reload()
{
    m_endWanted = true;
    requestHistory();
}

void ChartWindow::catchUp()
{
    requestHistory();
}

void ChartWindow::requestHistory()
{
    const unsigned int generation = ++m_historyGeneration;
    const QString path = u"/api/candles?symbol=%1&timeframe=%2"_s.arg(
        encodeQueryValue(m_symbol), encodeQueryValue(m_timeframe));
    m_history->refreshBody(path, [this, generation](const QByteArray& body, const QString& error) {
        if (generation == m_historyGeneration)
            onHistory(body, error);
    });
}

void ChartWindow::onHistory(const QByteArray& body, const QString& error)
{
    const bool toEnd = std::exchange(m_endWanted, false);
    if (!error.isEmpty()) {
        Q_EMIT logMessage(tr("Chart"), tr("%1: failed to load candles: %2").arg(shownName(m_symbol), error));
        return;
    }
    // A restored chart may get its history before the server has told the symbol's decimals: then even the
    // smallest prices count.
    const int digits = m_listed ? m_digits : mostPriceDigits;
    HistoryReply history = HistoryReply::read(body, {digits, QDateTime::currentMSecsSinceEpoch()});
    takeHistory(std::move(history.candles), toEnd);
    Q_EMIT logMessage(tr("Chart"),
        //: %1 the symbol, %2 the timeframe
        tr("%1,%2: %3 candles loaded", nullptr, pluralCount(history.received))
            .arg(shownName(m_symbol), timeframeLabel(m_timeframe), QString::number(history.received)));
}

void ChartWindow::takeHistory(std::vector<Candle> candles, bool toEnd)
{
    // The first history after a restart must not take back what the trader had chosen.
    const bool keepStill = std::exchange(m_restored, false) && !m_chart->autoScroll();
    if (toEnd || keepStill)
        m_chart->setCandles(std::move(candles));
    else
        m_chart->renewCandles(std::move(candles));
    if (keepStill)
        m_chart->setAutoScroll(false);
}

void ChartWindow::onPrices(const QJsonObject& prices)
{
    if (const std::optional<Quote> quote = findQuote(prices, m_symbol, m_digits))
        onQuote(*quote);
}

void ChartWindow::onQuote(const Quote& quote)
{
    m_quoted = true;
    if (quote.bid > 0.0 || quote.ask > 0.0)
        m_oneClick->setStale(false);
    m_chart->onTick(quote.bid, quote.ask, QDateTime::currentMSecsSinceEpoch());
    showQuote();
    m_expert->tick();
}

void ChartWindow::noteInterruption()
{
    m_chart->markQuoteStale();
    m_oneClick->setStale(m_quoted);
}

void ChartWindow::setTrades(const QJsonArray& open, const QJsonArray& pending)
{
    m_chart->setTradeLevels(buildTradeLevels(m_symbol, open, pending));
    m_expert->setPositionsCount(static_cast<int>(std::count_if(open.begin(), open.end(),
        [this](const QJsonValue& trade) { return trade::symbol(trade.toObject()) == m_symbol; })));
}

void ChartWindow::setAccountId(const QString& accountId)
{
    m_drawings->setAccountId(accountId);
}

QString ChartWindow::accountId() const
{
    return m_drawings->accountId();
}

void ChartWindow::setAccountFigures(double balance, double equity)
{
    m_balance = balance;
    m_equity = equity;
    m_expert->setAccountFigures(balance, equity);
}

void ChartWindow::setTimeframe(const QString& key)
{
    if (key == m_timeframe)
        return;
    m_timeframe = key;
    m_chart->setCandles({});
    nameWindow();
    Q_EMIT timeframeChanged(key);
    reload();
}

void ChartWindow::setSymbolInfo(int digits, const QString& description)
{
    const bool newDecimals = !std::exchange(m_listed, true) || digits != m_digits;
    m_digits = digits;
    m_description = description;
    m_chart->setDigits(digits);
    m_expert->setDigits(digits);
    if (newDecimals)
        dropCandlesWithoutPrices();
    labelChart();
    showQuote();
}

void ChartWindow::dropCandlesWithoutPrices()
{
    const auto lacksPrices = [this](const Candle& candle) { return !hasPrices(candle, m_digits); };
    const std::vector<Candle>& candles = m_chart->candles();
    if (std::none_of(candles.begin(), candles.end(), lacksPrices))
        return;
    std::vector<Candle> kept = candles;
    std::erase_if(kept, lacksPrices);
    m_chart->renewCandles(std::move(kept));
}

void ChartWindow::showQuote()
{
    // Before the first price the buttons show dashes.
    if (m_quoted)
        m_oneClick->setQuote(m_chart->bid(), m_chart->ask(), m_digits);
}

void ChartWindow::zoomIn()
{
    m_chart->zoomIn();
}

void ChartWindow::zoomOut()
{
    m_chart->zoomOut();
}

void ChartWindow::addIndicator(IndicatorKind kind)
{
    const IndicatorRow& row = indicatorRow(kind);
    if (row.pane)
        return showPane(kind, true);
    auto* dialog = new AverageDialog(row.usualPeriod, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QInputDialog::intValueSelected, this, [this, kind](int period) {
        QList<MovingAverageSpec> averages = m_chart->movingAverages();
        averages.append({kind, period, averageColor(averages.size())});
        m_chart->setMovingAverages(averages);
    });
    dialog->open();
}

void ChartWindow::removeMovingAverages()
{
    m_chart->setMovingAverages({});
}

void ChartWindow::showPane(IndicatorKind kind, bool on)
{
    m_chart->setPane(kind, on, indicatorRow(kind).usualPeriod);
}

void ChartWindow::setTool(const QString& key)
{
    m_chart->setTool(key);
    // Escape ends placing, so it must reach the chart, whatever had the focus when the tool was chosen.
    if (!key.isEmpty())
        m_chart->setFocus(Qt::OtherFocusReason);
}

void ChartWindow::deleteSelectedDrawing()
{
    m_chart->deleteSelectedDrawing();
}

bool ChartWindow::oneClickTrading() const
{
    return !m_oneClick->isHidden();
}

void ChartWindow::setOneClickTrading(bool on)
{
    m_oneClick->setVisible(on);
    placeTexts();
}

void ChartWindow::placeTexts()
{
    m_chart->setCovered(oneClickTrading() ? QRect(m_oneClick->pos(), m_oneClick->sizeHint()) : QRect());
}

void ChartWindow::setMeasureMode(bool on)
{
    m_chart->setMeasureMode(on);
    // Arrow keys and Enter measure there.
    if (on)
        m_chart->setFocus(Qt::OtherFocusReason);
}

void ChartWindow::setChartType(int type)
{
    m_chart->setChartType(type);
}

void ChartWindow::setAutoScroll(bool on)
{
    m_chart->setAutoScroll(on);
}

void ChartWindow::setChartShift(bool on)
{
    m_chart->setChartShift(on);
}

void ChartWindow::showDataWindow()
{
    if (!m_dataWindow)
        m_dataWindow = new DataWindow(*m_chart, m_symbol, this);
    m_dataWindow->show();
    m_dataWindow->raise();
}

void ChartWindow::requestSpecification()
{
    Q_EMIT specificationRequested(m_symbol);
}

void ChartWindow::showProperties()
{
    if (m_properties) {
        m_properties->raise();
        return;
    }
    m_properties = new ChartPropertiesDialog(m_symbol, m_chart->colors(), this);
    m_properties->setAttribute(Qt::WA_DeleteOnClose);
    connect(m_properties, &QDialog::accepted, m_chart, [this] {
        m_chart->setColors(m_properties->colors());
        m_comment->setColors(m_chart->colors());
    });
    m_properties->open();
}

void ChartWindow::contextMenuEvent(QContextMenuEvent* event)
{
    auto* menu = new ChartMenu(*this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
}

void ChartWindow::labelChart()
{
    m_chart->setTimeframeMs(timeframeMs(m_timeframe));
    m_chart->setSymbolInfo(shownName(m_symbol), timeframeLabel(m_timeframe), m_description);
    m_chart->setAccessibleName(tr("Chart %1").arg(title()));
}
