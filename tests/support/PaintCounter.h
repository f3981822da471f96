#pragma once

#include <QCoreApplication>
#include <QObject>
#include <QPaintEvent>
#include <QRegion>
#include <QWidget>

#include <utility>

/// Counts the paints of a widget from its construction on.
class PaintCounter final : public QObject {
public:
    explicit PaintCounter(QWidget& widget) { widget.installEventFilter(this); }

    [[nodiscard]] int count() const { return m_count; }

    /// Of the last paint.
    [[nodiscard]] const QRegion& region() const { return m_region; }

    /// Lets due paints happen, tells how many there were and counts from zero again.
    int taken()
    {
        QCoreApplication::processEvents();
        return std::exchange(m_count, 0);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++m_count;
            m_region = static_cast<QPaintEvent*>(event)->region();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    int m_count = 0;
    QRegion m_region;
};
