#pragma once

#include "experts/ExpertCandles.h"
#include "experts/WindowSums.h"

#include <QObject>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// What a script may ask and do: the native side of its trading interface. Holds no trading rules; whatever
/// leaves the chart goes through callbacks. Any script can call every invokable method with any arguments, so
/// nothing that scripts must not do may be invokable, and there are no properties.
///
/// Numbers from scripts arrive as doubles and are checked here: left to Qt, NaN would become bar 0
/// and 4294967297 bar 1.
class ExpertHost final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ExpertHost)

public:
    /// An unset callback makes the matching method do nothing, or give 0.
    struct Callbacks {
        std::function<double()> bid;
        std::function<double()> ask;
        std::function<double()> balance;     ///< account currency
        std::function<double()> equity;      ///< account currency
        std::function<int()> positionsCount; ///< open positions on the chart's symbol
        /// `side` is "BUY" or "SELL"; lots and prices are as the script gave them, in a range or not.
        std::function<void(const QString& side, double lots, double sl, double tp)> order;
        std::function<void()> closeAll;
        std::function<void(const QString& text)> print;
        std::function<void(const QString& text)> comment;
        std::function<void(const QString& text)> alert;
        /// Changes whenever a candle other than the newest does. Unset: nothing is remembered between calls.
        std::function<quint64()> seriesRevision;
        /// What came before the first of the candles. Unset: nothing. It must outlive the host as they must.
        OlderCandles* olderCandles = nullptr;
    };

    /// Longer texts of scripts are cut.
    static constexpr qsizetype longestText = 4096;

    /// `candles` is the chart's own list, oldest first; it must outlive the host or its disconnectChart().
    ExpertHost(const QString& symbol, int digits, const std::vector<Candle>& candles, Callbacks callbacks);
    ~ExpertHost() override;

    /// The symbol's price decimals, known late when the server lists the symbol late.
    void setDigits(int digits) { m_digits = digits; }

    /// From now on scripts find no candles and no prices, and what they ask for does not happen.
    void disconnectChart();

    /// While `hold` is set, what a script asks for happens in a later turn of the event loop: outside its
    /// hooks a script must not reach code that could end it on the spot.
    void holdActions(bool hold) { m_held = hold; }

    Q_INVOKABLE void print(const QString& text);
    Q_INVOKABLE void comment(const QString& text);
    Q_INVOKABLE void alert(const QString& text);

    [[nodiscard]] Q_INVOKABLE QString symbol() const { return m_symbol; }
    [[nodiscard]] Q_INVOKABLE int digits() const { return m_digits; }
    /// 10 to the power of minus digits.
    [[nodiscard]] Q_INVOKABLE double point() const;
    [[nodiscard]] Q_INVOKABLE double bid() const;
    [[nodiscard]] Q_INVOKABLE double ask() const;

    [[nodiscard]] Q_INVOKABLE int bars() const;
    // Shift 0 is the forming bar. 0 for a bar that is not there.
    [[nodiscard]] Q_INVOKABLE double close(double shift) const;
    [[nodiscard]] Q_INVOKABLE double open(double shift) const;
    [[nodiscard]] Q_INVOKABLE double high(double shift) const;
    [[nodiscard]] Q_INVOKABLE double low(double shift) const;

    /// Average of `period` closes up to the bar at `shift`; 0 with too few candles. The exponential method
    /// (1) starts from the simple average of its window and has no bar left to smooth over: every method
    /// gives the simple average, and scripts rely on it.
    [[nodiscard]] Q_INVOKABLE double ma(double period, double method, double shift);
    /// RSI over `period` differences up to the bar at `shift`, 0 to 100, plain averages; 0
    /// with too few candles.
    [[nodiscard]] Q_INVOKABLE double rsi(double period, double shift);

    [[nodiscard]] Q_INVOKABLE double balance() const;
    [[nodiscard]] Q_INVOKABLE double equity() const;
    [[nodiscard]] Q_INVOKABLE int positionsCount() const;

    Q_INVOKABLE void buy(double lots, double sl, double tp);
    Q_INVOKABLE void sell(double lots, double sl, double tp);
    Q_INVOKABLE void closeAll();
    Q_INVOKABLE void setTimer(double seconds);
    Q_INVOKABLE void killTimer();

Q_SIGNALS:
    /// Whole seconds, any sign.
    void timerRequested(int seconds);
    void timerKilled();

private:
    using Action = std::function<void(const Callbacks&)>;

    void act(Action action);
    void say(std::function<void(const QString&)> Callbacks::*callback, const QString& text);
    void order(const QString& side, double lots, double sl, double tp);
    [[nodiscard]] ExpertCandles candles() const { return {*m_candles, m_callbacks->olderCandles}; }
    [[nodiscard]] double price(double shift, double Candle::*field) const;
    /// Index of the bar at a shift; absent when there is none.
    [[nodiscard]] static std::optional<std::size_t> indexAt(const ExpertCandles& candles, double shift);
    [[nodiscard]] std::optional<quint64> revision() const;

    QString m_symbol;
    int m_digits;
    const std::vector<Candle>* m_candles;
    std::shared_ptr<const Callbacks>
        m_callbacks; ///< shared with calls under way, since these may end this object
    WindowSums m_sums;
    bool m_held = false;
};
