#pragma once

#include <QObject>

class QApplication;

/// Shift+F10 opens the context menu of what has the focus, as the menu key does, which many keyboards lack
/// and Qt alone knows here.
class MenuKey final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MenuKey)

public:
    explicit MenuKey(QApplication& application);
    ~MenuKey() override = default;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
