#pragma once

#include <QDialog>

/// Says what the program is and which version of it runs.
class AboutBox final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AboutBox)

public:
    /// Deletes itself when it is closed.
    explicit AboutBox(QWidget* parent = nullptr);
    ~AboutBox() override = default;
};
