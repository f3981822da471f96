#include "panes/AlertBook.h"

#include "net/JsonNumber.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <limits>

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

QList<AlertBook::Fired> AlertBook::check(const QJsonObject& prices)
{
    // Looking a symbol up in the snapshot costs several times what passing an entry by costs.
    constexpr qsizetype lookUpCost = 4;
    QList<Fired> fired;
    if (m_watched.size() * lookUpCost < prices.size()) {
        for (auto watched = m_watched.cbegin(); watched != m_watched.cend(); ++watched) {
            const auto quote = prices.constFind(watched.key());
            if (quote != prices.constEnd())
                checkSymbol(watched.key(), *watched, *quote, fired);
        }
    } else {
        for (auto quote = prices.constBegin(); quote != prices.constEnd(); ++quote) {
            const auto watched = m_watched.constFind(quote.key());
            if (watched != m_watched.cend())
                checkSymbol(watched.key(), *watched, *quote, fired);
        }
    }
    if (fired.isEmpty())
        return fired;
    std::sort(fired.begin(), fired.end(), [](const Fired& a, const Fired& b) { return a.index < b.index; });
    watchAll();
    return fired;
}

void AlertBook::checkSymbol(
    const QString& symbol, const Watch& watched, const QJsonValue& quote, QList<Fired>& fired)
{
    const double bid = jsonNumber(quote["bid"_L1]);
    if (bid > 0.0 && (bid >= watched.lowestAbove || bid <= watched.highestBelow))
        collect(symbol, bid, fired);
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
    constexpr double never = std::numeric_limits<double>::infinity();
    const auto known = m_watched.find(alert.symbol);
    const auto entry = known != m_watched.end() ? known : m_watched.insert(alert.symbol, {never, -never});
    if (alert.above)
        entry->lowestAbove = std::min(entry->lowestAbove, alert.price);
    else
        entry->highestBelow = std::max(entry->highestBelow, alert.price);
}

void AlertBook::watchAll()
{
    m_watched.clear();
    for (const PriceAlert& alert : std::as_const(m_alerts))
        watch(alert);
}
