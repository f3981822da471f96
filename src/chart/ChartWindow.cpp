#include "chart/ChartWindow.h"

#include "chart/ChartState.h"
#include "chart/ChartWidget.h"
#include "chart/HistoryReply.h"
#include "chart/Timeframe.h"
#include "chart/TradeLevels.h"
#include "net/ApiClient.h"
#include "net/JsonNumber.h"
#include "net/ReadCoalescer.h"
#include "net/UrlParts.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

ChartWindow::ChartWindow(ApiClient& api, const QString& symbol, const QString& timeframe,
    const QString& accountId, int digits, QWidget* parent)
    : QWidget(parent)
    , m_history(new ReadCoalescer(api, this))
    , m_symbol(symbol)
    , m_timeframe(timeframe)
    , m_accountId(accountId)
    , m_digits(digits)
    , m_chart(new ChartWidget(this))
{
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_chart);
    setFocusProxy(m_chart);

    m_chart->setDigits(m_digits);
    labelChart();
    setWindowTitle(title());

    connect(m_chart, &ChartWidget::crosshairMoved, this, &ChartWindow::crosshairMoved);
    connect(m_chart, &ChartWidget::autoScrollChanged, this, &ChartWindow::autoScrollChanged);
    connect(m_chart, &ChartWidget::settingsChanged, this, &ChartWindow::settingsChanged);
    connect(m_chart, &ChartWidget::levelDragged, this, &ChartWindow::modifyLevelRequested);
}

ChartWindow::~ChartWindow() = default;

QString ChartWindow::title() const
{
    return u"%1,%2"_s.arg(m_symbol, timeframeLabel(m_timeframe));
}

QJsonObject ChartWindow::saveState() const
{
    return ChartState::of(*m_chart).toJson();
}

void ChartWindow::restoreState(const QJsonObject& state)
{
    ChartState::fromJson(state).applyTo(*m_chart);
}

void ChartWindow::load()
{
    reload();
}

void ChartWindow::reload()
{
    const unsigned int generation = ++m_historyGeneration;
    const QString path = u"/api/candles?symbol=%1&timeframe=%2"_s.arg(
        encodeQueryValue(m_symbol), encodeQueryValue(m_timeframe));
    m_history->refresh(path, [this, generation](const QJsonDocument& document, const QString& error) {
        if (generation == m_historyGeneration)
            onHistory(document, error);
    });
}

void ChartWindow::onHistory(const QJsonDocument& document, const QString& error)
{
    std::optional<HistoryReply> history;
    if (error.isEmpty())
        history = HistoryReply::read(document);
    if (!history) {
        const QString reason = error.isEmpty() ? tr("Unexpected server response") : error;
        Q_EMIT logMessage(tr("Chart"), tr("%1: failed to load candles: %2").arg(m_symbol, reason));
        return;
    }
    m_chart->setCandles(std::move(history->candles));
    Q_EMIT logMessage(tr("Chart"),
        tr("%1,%2: %3 candles loaded")
            .arg(m_symbol, timeframeLabel(m_timeframe), QString::number(history->received)));
}

void ChartWindow::onPrices(const QJsonObject& prices)
{
    const auto found = prices.constFind(m_symbol);
    if (found == prices.constEnd())
        return;
    const QJsonObject quote = found->toObject();
    const double bid = jsonNumber(quote.value("bid"_L1));
    const double ask = jsonNumber(quote.value("ask"_L1));
    if (bid <= 0.0 || ask <= 0.0)
        return;
    m_chart->onTick(bid, ask, QDateTime::currentMSecsSinceEpoch());
}

void ChartWindow::setTrades(const QJsonArray& open, const QJsonArray& pending)
{
    m_chart->setTradeLevels(buildTradeLevels(m_symbol, open, pending));
}

void ChartWindow::setAccountId(const QString& accountId)
{
    m_accountId = accountId;
}

void ChartWindow::setAccountFigures(double balance, double equity)
{
    m_balance = balance;
    m_equity = equity;
}

void ChartWindow::setTimeframe(const QString& key)
{
    if (key == m_timeframe)
        return;
    m_timeframe = key;
    labelChart();
    m_chart->setCandles({});
    setWindowTitle(title());
    Q_EMIT titleChanged(title());
    Q_EMIT timeframeChanged(key);
    reload();
}

void ChartWindow::setSymbolInfo(int digits, const QString& description)
{
    m_digits = digits;
    m_description = description;
    m_chart->setDigits(digits);
    labelChart();
}

void ChartWindow::zoomIn()
{
    m_chart->zoomIn();
}

void ChartWindow::zoomOut()
{
    m_chart->zoomOut();
}

void ChartWindow::labelChart()
{
    m_chart->setTimeframeMs(timeframeMs(m_timeframe));
    m_chart->setSymbolInfo(m_symbol, timeframeLabel(m_timeframe), m_description);
    m_chart->setAccessibleName(tr("Chart %1").arg(title()));
}
