#pragma once

#include <QBasicTimer>
#include <QObject>

class QNetworkReply;
class QWidget;

/// Holds up the paint of a window until the body of a request has left, for a few milliseconds at most. Qt
/// fetches a body from the window's thread one turn of the event loop after it was sent, and would paint
/// first whatever is due. Ends by itself.
class PaintHold final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PaintHold)

public:
    static constexpr int usualMs = 5;

    /// For a request that was sent in this turn; never longer than that. The hold goes with the window.
    PaintHold(QWidget& window, const QNetworkReply& reply, int longestMs = usualMs);
    ~PaintHold() override;

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    void end();

    QWidget& m_window;
    QBasicTimer m_longest;
    bool m_isDue = false;
};
