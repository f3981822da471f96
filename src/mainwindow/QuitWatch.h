#pragma once

#include <QObject>

/// Hears of the application's end before any window does. Left to itself Qt asks every window to
/// close, in an order that varies, and gives up when one of them refuses.
class QuitWatch final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(QuitWatch)

public:
    explicit QuitWatch(QObject* parent = nullptr);
    ~QuitWatch() override = default;

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// The last window has closed, or something outside asks for the end. No window will be asked: whoever
    /// listens ends the event loop.
    void quitRequested();
};
