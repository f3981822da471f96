#pragma once

#include <QList>
#include <QString>

class QJsonObject;

/// One line of a contract specification.
struct SymbolFact final {
    QString property;
    QString value;
};

/// The contract specification of a symbol, line by line, from the server's record of it; nothing for an
/// empty record. Values are plain text of one line.
[[nodiscard]] QList<SymbolFact> symbolFacts(const QString& symbol, const QJsonObject& record);
