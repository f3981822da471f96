#pragma once

#include <QBasicTimer>
#include <QSet>
#include <QTreeWidget>

/// A log that only grows: time, source, message, newest at the bottom and in sight. Adding a row costs
/// the same with a million rows as with ten: Qt would lay out the whole list again after each
/// row, so here the layout waits, longer the longer the list is, and takes a few per cent of the time
/// at most. A list that nobody sees is laid out when it is shown.
class LogList final : public QTreeWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(LogList)

public:
    enum class Clock { Seconds, Milliseconds };

    /// `clock`: how fine the times of the rows are shown.
    explicit LogList(Clock clock, QWidget* parent = nullptr);
    ~LogList() override = default;

    /// Waits until the list is seen: a change of the look asks for it a dozen times.
    void doItemsLayout() override;

    /// Adds a row at the bottom with the present local time. Source and message are shortened, put on one
    /// line and freed of known secrets.
    void append(const QString& source, const QString& message);

protected:
    void rowsInserted(const QModelIndex& parent, int start, int end) override;
    void showEvent(QShowEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void showNewest();

    Clock m_clock;
    QSet<QString> m_sources; ///< one shared copy of each source name
    QBasicTimer m_layoutTimer;
    bool m_behind = false;   ///< rows were added since the last layout
    bool m_isUnlaid = false; ///< it was asked for a layout while nobody saw it
};
