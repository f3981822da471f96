#include "experts/ExpertHost.h"

#include <QJSEngine>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const std::vector<Candle>& noCandles()
{
    static const std::vector<Candle> none;
    return none;
}

QString shortened(const QString& text)
{
    return text.size() <= ExpertHost::longestText ? text : text.first(ExpertHost::longestText) + u'…';
}

template <typename Number> Number ask(const std::function<Number()>& callback)
{
    return callback ? callback() : Number(0);
}

} // namespace

ExpertHost::ExpertHost(
    const QString& symbol, int digits, const std::vector<Candle>& candles, Callbacks callbacks)
    : m_symbol(symbol)
    , m_digits(digits)
    , m_candles(&candles)
    , m_callbacks(std::make_shared<const Callbacks>(std::move(callbacks)))
{
}

ExpertHost::~ExpertHost() = default;

void ExpertHost::disconnectChart()
{
    m_candles = &noCandles();
    m_callbacks = std::make_shared<const Callbacks>();
}

void ExpertHost::act(Action action)
{
    // Qt calls a method even when the conversion of its arguments has thrown an error.
    if (const QJSEngine* engine = qjsEngine(this); engine && engine->hasError())
        return;
    if (m_held) {
        QMetaObject::invokeMethod(
            this, [this, action = std::move(action)] { action(*std::shared_ptr(m_callbacks)); },
            Qt::QueuedConnection);
        return;
    }
    const std::shared_ptr<const Callbacks> callbacks = m_callbacks;
    action(*callbacks);
}

void ExpertHost::say(std::function<void(const QString&)> Callbacks::*callback, const QString& text)
{
    act([callback, text = shortened(text)](const Callbacks& callbacks) {
        if (callbacks.*callback)
            (callbacks.*callback)(text);
    });
}

void ExpertHost::print(const QString& text)
{
    say(&Callbacks::print, text);
}

void ExpertHost::comment(const QString& text)
{
    say(&Callbacks::comment, text);
}

void ExpertHost::alert(const QString& text)
{
    say(&Callbacks::alert, text);
}

double ExpertHost::point() const
{
    return std::pow(10.0, -m_digits);
}

double ExpertHost::bid() const
{
    return ::ask(m_callbacks->bid);
}

double ExpertHost::ask() const
{
    return ::ask(m_callbacks->ask);
}

int ExpertHost::bars() const
{
    return static_cast<int>(std::min<std::size_t>(candles().size(), std::numeric_limits<int>::max()));
}

double ExpertHost::close(double shift) const
{
    return price(shift, &Candle::close);
}

double ExpertHost::open(double shift) const
{
    return price(shift, &Candle::open);
}

double ExpertHost::high(double shift) const
{
    return price(shift, &Candle::high);
}

double ExpertHost::low(double shift) const
{
    return price(shift, &Candle::low);
}

double ExpertHost::price(double shift, double Candle::*field) const
{
    const ExpertCandles all = candles();
    const std::optional<std::size_t> index = indexAt(all, shift);
    return index ? all.price(*index, field) : 0.0;
}

std::optional<std::size_t> ExpertHost::indexAt(const ExpertCandles& candles, double shift)
{
    const double whole = std::trunc(shift);
    if (!(whole >= 0.0 && whole < static_cast<double>(candles.size())))
        return std::nullopt;
    return candles.size() - 1 - static_cast<std::size_t>(whole);
}

std::optional<quint64> ExpertHost::revision() const
{
    return m_callbacks->seriesRevision ? std::optional(m_callbacks->seriesRevision()) : std::nullopt;
}

double ExpertHost::ma(double period, [[maybe_unused]] double method, double shift)
{
    const ExpertCandles all = candles();
    const std::optional<std::size_t> index = indexAt(all, shift);
    const double whole = std::trunc(period);
    if (!index || !(whole >= 1.0 && whole <= static_cast<double>(*index) + 1.0))
        return 0.0;
    const std::size_t first = *index + 1 - static_cast<std::size_t>(whole);
    return m_sums.closes(all, revision(), first, *index) / whole;
}

double ExpertHost::rsi(double period, double shift)
{
    const ExpertCandles all = candles();
    const std::optional<std::size_t> index = indexAt(all, shift);
    const double whole = std::trunc(period);
    if (!index || !(whole >= 1.0 && whole <= static_cast<double>(*index)))
        return 0.0;
    const std::size_t first = *index + 1 - static_cast<std::size_t>(whole);
    const WindowSums::Moves moves = m_sums.moves(all, revision(), first, *index);
    const double averageGain = moves.gains / whole;
    const double averageLoss = moves.losses / whole;
    return averageLoss == 0.0 ? 100.0 : 100.0 - 100.0 / (1.0 + averageGain / averageLoss);
}

double ExpertHost::balance() const
{
    return ::ask(m_callbacks->balance);
}

double ExpertHost::equity() const
{
    return ::ask(m_callbacks->equity);
}

int ExpertHost::positionsCount() const
{
    return ::ask(m_callbacks->positionsCount);
}

void ExpertHost::buy(double lots, double sl, double tp)
{
    order(u"BUY"_s, lots, sl, tp);
}

void ExpertHost::sell(double lots, double sl, double tp)
{
    order(u"SELL"_s, lots, sl, tp);
}

void ExpertHost::order(const QString& side, double lots, double sl, double tp)
{
    act([side, lots, sl, tp](const Callbacks& callbacks) {
        if (callbacks.order)
            callbacks.order(side, lots, sl, tp);
    });
}

void ExpertHost::closeAll()
{
    act([](const Callbacks& callbacks) {
        if (callbacks.closeAll)
            callbacks.closeAll();
    });
}

void ExpertHost::setTimer(double seconds)
{
    constexpr double most = std::numeric_limits<int>::max();
    if (!std::isnan(seconds))
        Q_EMIT timerRequested(static_cast<int>(std::clamp(std::trunc(seconds), -most, most)));
}

void ExpertHost::killTimer()
{
    Q_EMIT timerKilled();
}
