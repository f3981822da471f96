#pragma once

#include <QLabel>

struct ChartColors;

/// The text that an expert shows in the top-left corner of a chart, below the chart's own lines and the panel
/// of one-click trading. Plain text, clipped at the chart's edges; the mouse acts on the chart below.
class ChartComment final : public QLabel {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ChartComment)

public:
    /// `panel` is a sibling on the chart that the comment leaves room for while it is shown.
    ChartComment(const QWidget& panel, QWidget* chart);
    ~ChartComment() override;

    /// An empty text hides the comment.
    void setComment(const QString& text);
    void setColors(const ChartColors& colors);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void place();

    const QWidget& m_panel;
};
