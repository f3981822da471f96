#pragma once

#include <QObject>

class QApplication;

/// Lets Enter press the button that has the focus, as the space bar does; an Enter that is held down presses
/// it once. Qt does that in dialogs alone, where it stays as Qt has it.
class EnterPress final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(EnterPress)

public:
    /// Serves all windows of the application, as long as it lives.
    explicit EnterPress(QApplication& application);
    ~EnterPress() override = default;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
