#pragma once

#include <QInputDialog>

/// Asks for the period of a new moving average: 2 to 400 bars, 20 at first. Read the answer from
/// intValue() once the dialog was accepted.
class AverageDialog final : public QInputDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AverageDialog)

public:
    explicit AverageDialog(QWidget* parent = nullptr);
    ~AverageDialog() override;
};
