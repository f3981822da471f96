#include "panes/SymbolOrder.h"

#include "net/records/JsonNumber.h"

#include <QJsonArray>

using namespace Qt::StringLiterals;

QList<QJsonObject> symbolsInListOrder(const QJsonArray& symbols)
{
    struct Entry {
        int order;
        QString name;
        QJsonObject record;
    };
    std::vector<Entry> entries;
    entries.reserve(size_t(symbols.size()));
    for (const auto& value : symbols) {
        const QJsonObject record = value.toObject();
        const QString name = record.value("name"_L1).toString();
        if (!name.isEmpty())
            entries.push_back({jsonInt(record.value("sortOrder"_L1), 0), name, record});
    }
    std::stable_sort(entries.begin(), entries.end(), [](const Entry& a, const Entry& b) {
        return a.order != b.order ? a.order < b.order : a.name < b.name;
    });
    QList<QJsonObject> sorted;
    sorted.reserve(symbols.size());
    for (const Entry& entry : entries)
        sorted.append(entry.record);
    return sorted;
}
