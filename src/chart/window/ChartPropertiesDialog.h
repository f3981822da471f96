#pragma once

#include "chart/data/ChartColors.h"

#include <QDialog>

#include <array>

class QPushButton;
struct ChartColorRole;

/// Edits the seven colours of one chart. Changes a copy: take colors() once the dialog was accepted.
class ChartPropertiesDialog final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ChartPropertiesDialog)

public:
    /// `symbol` is only shown.
    ChartPropertiesDialog(const QString& symbol, const ChartColors& colors, QWidget* parent = nullptr);
    ~ChartPropertiesDialog() override;

    [[nodiscard]] const ChartColors& colors() const { return m_colors; }

private:
    void chooseColor(const ChartColorRole& role);
    void useColors(const ChartColors& colors);

    ChartColors m_colors;
    std::array<QPushButton*, 7> m_swatches{};
};
