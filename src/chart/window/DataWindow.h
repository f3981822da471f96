#pragma once

#include "chart/series/Candle.h"

#include <QTimer>
#include <QWidget>

#include <optional>

class ChartWidget;
class QLabel;

/// A small window on top of the others that shows the candle under the pointer of one chart. It follows the
/// chart only while it can be seen.
class DataWindow final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DataWindow)

public:
    /// `symbol` is shown as plain text, whatever it holds. The chart must outlive the window.
    DataWindow(const ChartWidget& chart, const QString& symbol, QWidget* parent = nullptr);
    ~DataWindow() override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    struct Shown {
        std::optional<Candle> candle;
        int digits = 0;

        bool operator==(const Shown&) const = default;
    };

    void follow();
    [[nodiscard]] QString text(const Shown& shown) const;

    const ChartWidget& m_chart;
    QString m_symbol;
    QLabel* m_label;
    QTimer m_timer;
    std::optional<Shown> m_shown;
};
