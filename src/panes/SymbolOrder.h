#pragma once

#include <QJsonObject>
#include <QList>

class QJsonArray;

/// The symbol records in the order in which every list shows them: ascending "sortOrder" (0 when it is
/// missing or no integer), equal ones by "name", upper case before lower case. Entries without a name
/// are left out: nothing could be done with them.
[[nodiscard]] QList<QJsonObject> symbolsInListOrder(const QJsonArray& symbols);
