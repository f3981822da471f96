#pragma once

#include <QObject>

class QAbstractButton;
class QApplication;

/// Lets Enter press the button that has the focus, as the space bar does. Held down it presses once, and does
/// nothing more anywhere. Qt lets it press in dialogs alone, where it stays as Qt has it.
class EnterPress final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EnterPress)

public:
    /// Serves all windows of the application, as long as it lives.
    explicit EnterPress(QApplication& application);
    ~EnterPress() override = default;

    /// Enter shall do nothing to this button: only the space bar presses it.
    static void spare(QAbstractButton& button);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool m_pressing = false; ///< the last press of Enter has pressed a button
};
