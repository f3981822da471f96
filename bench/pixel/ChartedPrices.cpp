#include "pixel/ChartedPrices.h"

#include "scenes/StubPlatform.h"

namespace {

constexpr int movingShare = 5;
static_assert(ChartedPrices::snapshotsUntilSame == movingShare * ChartedPrices::prices);

} // namespace

ChartedPrices::ChartedPrices()
    : m_prices(symbols, 0)
{
}

void ChartedPrices::change(int chart, quint32 chance)
{
    m_prices[chart]
        = static_cast<int>((static_cast<quint32>(of(chart)) + 1 + chance % (prices - 1)) % prices);
}

QString ChartedPrices::message(int first, int last) const
{
    return QString::fromLatin1("{\"type\":\"price_update\",\"data\":" + quotes(first, last) + '}');
}

QByteArray ChartedPrices::quotes(int first, int last) const
{
    QByteArray text;
    for (int symbol = first; symbol <= last; ++symbol)
        text += (symbol > first ? "," : "") + StubPlatform::quote(symbol, points(symbol));
    return '{' + text + '}';
}

double ChartedPrices::middle(int chart) const
{
    return StubPlatform::middle(points(chart));
}

QString ChartedPrices::snapshot(int still)
{
    ++m_phase;
    for (int symbol = m_phase % movingShare; symbol < symbols; symbol += movingShare) {
        if (symbol != still)
            m_prices[symbol] = (m_prices[symbol] + 1) % prices;
    }
    return message(0, symbols - 1);
}

int ChartedPrices::points(int symbol) const
{
    constexpr int lowest = 320;
    constexpr int step = 37; // so that hardly a digit stays
    return StubPlatform::lowestPoints(symbol) + lowest + step * m_prices.at(symbol);
}
