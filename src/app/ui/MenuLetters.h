#pragma once

#include <QObject>

class QApplication;

/// A letter in an open menu goes to the next entry that begins with it, and opens a submenu; Enter chooses.
/// Letters that are underlined in the menu stay Qt's, which knows no others in the style that is used here.
class MenuLetters final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MenuLetters)

public:
    /// Serves all menus of the application, as long as it lives.
    explicit MenuLetters(QApplication& application);
    ~MenuLetters() override = default;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
