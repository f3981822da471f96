#pragma once

#include <QList>
#include <QMap>
#include <QObject>

/// Every QObject of the process while it lives, told by the hooks that Qt keeps for debuggers: also those
/// without a parent, which no search from a window finds.
namespace liveobjects {

/// From now on; before the first object is made.
void watch();

/// Those of the calling thread. What Qt itself has for the desktop, and keeps, does not count.
[[nodiscard]] QList<QObject*> here();

/// How many there are of each class.
[[nodiscard]] QMap<QByteArray, int> classes(const QList<QObject*>& objects);

/// The first one of this class; nothing without one.
template <typename Class> [[nodiscard]] Class* first()
{
    for (QObject* object : here()) {
        if (auto* found = qobject_cast<Class*>(object))
            return found;
    }
    return nullptr;
}

} // namespace liveobjects
