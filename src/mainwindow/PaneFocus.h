#pragma once

#include <QList>
#include <QObject>

#include <functional>

class QWidget;

/// The keyboard's way between the parts of a window: F6 goes to the next one that is on show, Shift+F6 to the
/// one before, and Escape, where nobody else wants it, back into the first.
class PaneFocus final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PaneFocus)

public:
    /// A part of the window, which may consist of several widgets in a row, such as toolbars.
    struct Pane {
        QList<QWidget*> frames;
        /// What takes the keyboard, when that is neither the list on show nor the first field; it may return
        /// nothing.
        std::function<QWidget*()> entrance;
    };

    /// The panes in the order of the ring; they end with the window, which is also the parent.
    PaneFocus(QWidget& window, const QList<Pane>& panes);
    ~PaneFocus() override = default;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void go(bool forward);
    [[nodiscard]] bool returnToFirst();
    [[nodiscard]] qsizetype currentPane() const;

    QList<Pane> m_panes;
};
