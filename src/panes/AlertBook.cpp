#include "panes/AlertBook.h"

#include "net/records/JsonNumber.h"
#include "net/records/PriceSnapshot.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

AlertBook AlertBook::fromJson(const QString& text)
{
    AlertBook book;
    const QJsonArray rows = QJsonDocument::fromJson(text.toUtf8()).array();
    book.m_alerts.reserve(rows.size());
    for (const auto& row : rows) {
        book.m_alerts.append({row["symbol"_L1].toString(), jsonBool(row["above"_L1], false),
            row["price"_L1].toDouble(), jsonBool(row["triggered"_L1], false)});
    }
    book.watchAll();
    return book;
}

QString AlertBook::toJson() const
{
    QJsonArray rows;
    for (const PriceAlert& alert : m_alerts) {
        rows.append(QJsonObject{{u"symbol"_s, alert.symbol}, {u"above"_s, alert.above},
            {u"price"_s, alert.price}, {u"triggered"_s, alert.triggered}});
    }
    return QString::fromUtf8(QJsonDocument(rows).toJson(QJsonDocument::Compact));
}

void AlertBook::add(const PriceAlert& alert)
{
    m_alerts.append(alert);
    watch(alert);
}

void AlertBook::removeAt(qsizetype index)
{
    if (index < 0 || index >= m_alerts.size())
        return;
    m_alerts.removeAt(index);
    watchAll();
}

QList<AlertBook::Fired> AlertBook::check(const PriceSnapshot& prices)
{
    QList<Fired> fired;
    // Both are in the order of their symbols.
    auto entry = prices.entries().begin();
    const auto end = prices.entries().end();
    for (const auto& [symbol, watched] : m_watched) {
        while (entry != end && entry->symbol < symbol)
            ++entry;
        if (entry == end)
            break;
        const double bid = entry->quote.bid;
        const bool reached = bid >= watched.lowestAbove || bid <= watched.highestBelow;
        if (reached && bid > 0.0 && entry->symbol == symbol)
            collect(symbol, bid, fired);
    }
    if (fired.isEmpty())
        return fired;
    std::sort(fired.begin(), fired.end(), [](const Fired& a, const Fired& b) { return a.index < b.index; });
    watchAll();
    return fired;
}

void AlertBook::collect(const QString& symbol, double bid, QList<Fired>& fired)
{
    for (qsizetype i = 0; i < m_alerts.size(); ++i) {
        PriceAlert& alert = m_alerts[i];
        if (alert.triggered || alert.symbol != symbol)
            continue;
        if (alert.above ? bid < alert.price : bid > alert.price)
            continue;
        alert.triggered = true;
        fired.append({i, bid});
    }
}

void AlertBook::watch(const PriceAlert& alert)
{
    if (alert.triggered)
        return;
    Watch& watched = m_watched[alert.symbol];
    if (alert.above)
        watched.lowestAbove = std::min(watched.lowestAbove, alert.price);
    else
        watched.highestBelow = std::max(watched.highestBelow, alert.price);
}

void AlertBook::watchAll()
{
    m_watched.clear();
    for (const PriceAlert& alert : std::as_const(m_alerts))
        watch(alert);
}
