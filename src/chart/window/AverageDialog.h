#pragma once

#include <QInputDialog>

/// Asks for the period of a new moving average: 2 to 400 bars, `usualPeriod` at first. Read the answer from
/// intValue() once the dialog was accepted.
class AverageDialog final : public QInputDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AverageDialog)

public:
    explicit AverageDialog(int usualPeriod, QWidget* parent = nullptr);
    ~AverageDialog() override;
};
