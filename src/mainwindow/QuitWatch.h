#pragma once

#include <QObject>

/// Hears of the application's end before any window does. Otherwise Qt would ask every window to close, in an
/// order that varies, and give up when one of them refuses.
class QuitWatch final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(QuitWatch)

public:
    explicit QuitWatch(QObject* parent = nullptr);
    ~QuitWatch() override = default;

    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    /// The last window has closed, or something outside asks for the end. No window will be asked; the
    /// listener must end the event loop.
    void quitRequested();
};
