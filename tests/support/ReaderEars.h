#pragma once

#include "app/ui/ScreenReader.h"

#include <QList>

#include <algorithm>

/// Stands in for a screen reader while it lives, and keeps what it is told.
class ReaderEars final {
    Q_DISABLE_COPY_MOVE(ReaderEars)

public:
    struct Heard {
        QAccessible::Event event;
        QAccessible::Id id;
        QString name; ///< of what it is about, at that moment
    };

    ReaderEars()
    {
        setReaderStandIn([this](QAccessibleEvent& event) {
            const QAccessibleInterface* about = event.accessibleInterface();
            m_heard.append(
                {event.type(), event.uniqueId(), about ? about->text(QAccessible::Name) : QString()});
        });
    }
    ~ReaderEars() { setReaderStandIn({}); }

    [[nodiscard]] const QList<Heard>& heard() const { return m_heard; }
    [[nodiscard]] qsizetype count(QAccessible::Event event) const
    {
        return std::count_if(
            m_heard.begin(), m_heard.end(), [event](const Heard& each) { return each.event == event; });
    }
    /// What the events of a kind were about, in their order.
    [[nodiscard]] QStringList names(QAccessible::Event event) const
    {
        QStringList names;
        for (const Heard& each : m_heard) {
            if (each.event == event)
                names.append(each.name);
        }
        return names;
    }
    void forget() { m_heard.clear(); }

private:
    QList<Heard> m_heard;
};
