#pragma once

#include <QList>
#include <QObject>
#include <QRect>

class QWidget;

/// The part of each screen that windows may use, the first screen first.
[[nodiscard]] QList<QRect> availableScreens();

/// Keeps what the terminal opens within the screen: each dialog and small window over the main window, and
/// the main window itself when it asks for it. A window is watched in its first moments only; later it stays
/// where the trader puts it.
class ScreenFit final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ScreenFit)

public:
    explicit ScreenFit(QWidget& mainWindow);
    ~ScreenFit() override = default;

    /// Fits a window that is being shown: at once, and again when the desktop has put a frame around it. Ends
    /// when somebody else gives it a size.
    static void fit(QWidget& window);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget& m_mainWindow;
};
