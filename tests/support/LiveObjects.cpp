#include "support/LiveObjects.h"

#include <QThread>
#include <QWidget>
#include <QWindow>

#include <mutex>
#include <unordered_set>

// As Qt's own qhooks_p.h has it, whose layout has been the same since Qt 5.
extern quintptr Q_DECL_IMPORT qtHookData[];

namespace {

constexpr int hookOfNew = 3;
constexpr int hookOfGone = 4;

struct Living {
    std::mutex mutex;
    std::unordered_set<QObject*> objects;
};

/// Never ends: objects go until the very last moment of the process.
Living& living()
{
    static auto* all = new Living;
    return *all;
}

void noteNew(QObject* object)
{
    const std::lock_guard lock(living().mutex);
    living().objects.insert(object);
}

void noteGone(QObject* object)
{
    const std::lock_guard lock(living().mutex);
    living().objects.erase(object);
}

bool isDesktop(QObject& object)
{
    const auto* widget = qobject_cast<const QWidget*>(&object);
    const auto* window = qobject_cast<const QWindow*>(&object);
    return (widget && widget->windowType() == Qt::Desktop) || (window && window->type() == Qt::Desktop);
}

} // namespace

void liveobjects::watch()
{
    qtHookData[hookOfNew] = reinterpret_cast<quintptr>(&noteNew);
    qtHookData[hookOfGone] = reinterpret_cast<quintptr>(&noteGone);
}

QList<QObject*> liveobjects::here()
{
    const std::lock_guard lock(living().mutex);
    QList<QObject*> objects;
    for (QObject* object : living().objects) {
        if (object->thread() == QThread::currentThread() && !isDesktop(*object))
            objects.append(object);
    }
    return objects;
}

QMap<QByteArray, int> liveobjects::classes(const QList<QObject*>& objects)
{
    QMap<QByteArray, int> counts;
    for (const QObject* object : objects)
        ++counts[object->metaObject()->className()];
    return counts;
}
