#include "net/records/SymbolRecord.h"

#include "app/base/PriceRule.h"
#include "net/records/JsonNumber.h"

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

QString symbol::name(const QJsonObject& record)
{
    return record.value("name"_L1).toString();
}

QString symbol::description(const QJsonObject& record)
{
    return record.value("description"_L1).toString();
}

int symbol::digits(const QJsonObject& record)
{
    return jsonInt(record.value("digits"_L1), usualPriceDigits);
}

double symbol::dailyOpen(const QJsonObject& record)
{
    return jsonNumber(record.value("dailyOpen"_L1));
}

double symbol::contractSize(const QJsonObject& record)
{
    return jsonNumber(record.value("contractSize"_L1));
}

double symbol::commission(const QJsonObject& record)
{
    return jsonNumber(record.value("commission"_L1));
}

double symbol::swapLong(const QJsonObject& record)
{
    return jsonNumber(record.value("swapLong"_L1));
}

double symbol::swapShort(const QJsonObject& record)
{
    return jsonNumber(record.value("swapShort"_L1));
}

QList<QJsonObject> symbol::inListOrder(const QJsonArray& symbols)
{
    struct Entry {
        int rank;
        QString name;
        QJsonObject record;
    };
    std::vector<Entry> entries;
    entries.reserve(size_t(symbols.size()));
    for (const QJsonValue value : symbols) {
        const QJsonObject record = value.toObject();
        if (const QString known = name(record); !known.isEmpty())
            entries.push_back({jsonInt(record.value("sortOrder"_L1), 0), known, record});
    }
    std::stable_sort(entries.begin(), entries.end(),
        [](const Entry& a, const Entry& b) { return a.rank != b.rank ? a.rank < b.rank : a.name < b.name; });
    QList<QJsonObject> sorted;
    sorted.reserve(symbols.size());
    for (const Entry& entry : entries)
        sorted.append(entry.record);
    return sorted;
}
