#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

/// What the test platform says of its 500 symbols, of which the first ones have charts. A charted symbol
/// takes one of a few prices, each of which looks different from every other; they are all within the candles
/// of its history, so that no chart's scale changes with them.
class ChartedPrices final {
public:
    static constexpr int symbols = 500;
    static constexpr int prices = 8;
    static constexpr int noChart = -1;
    /// After so many snapshots in which no chart is still, all prices are what they were before.
    static constexpr int snapshotsUntilSame = 40;

    ChartedPrices();

    [[nodiscard]] int of(int chart) const { return m_prices.at(chart); }
    void set(int chart, int price) { m_prices[chart] = price; }
    /// To another one than it has, by chance.
    void change(int chart, quint32 chance);

    /// A message with the quotes of these charts alone, from the first to the last of them.
    [[nodiscard]] QString message(int first, int last) const;
    /// The quotes of all symbols, an object.
    [[nodiscard]] QByteArray quotes() const { return quotes(0, symbols - 1); }
    /// What a chart's newest candle closes at now: the middle of its quote.
    [[nodiscard]] double middle(int chart) const;
    /// The next message with the quotes of all symbols, of which each fifth has moved; that of the chart
    /// named, which may be noChart, has not.
    [[nodiscard]] QString snapshot(int still);

private:
    [[nodiscard]] QByteArray quotes(int first, int last) const;
    [[nodiscard]] int points(int symbol) const;

    QList<int> m_prices; ///< of all symbols
    int m_phase = 0;
};
