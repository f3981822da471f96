#pragma once

#include "app/ui/ReadAloud.h"

#include <QList>
#include <QWidget>

/// A small live chart: the last few hundred bid and ask quotes as two lines, a price scale and a tag
/// with the latest value of each.
class TickChartWidget final : public QWidget, public ReadAloud {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TickChartWidget)

public:
    static constexpr int mostQuotes = 400;

    explicit TickChartWidget(QWidget* parent = nullptr);
    ~TickChartWidget() override = default;

    /// Decimals of every number drawn.
    void setDigits(int digits);
    /// Forgets all quotes. The caller repaints.
    void clear();
    /// Adds the newest quote and drops the oldest beyond mostQuotes. A quote that is not finite is
    /// ignored. The caller repaints.
    void append(double bid, double ask);
    /// No quotes come any more, or do again: old ones are drawn without their colours.
    void setStale(bool stale);

    /// Whose quotes they are, for those who do not see the field beside it.
    void setSymbol(const QString& symbol);

    [[nodiscard]] int digits() const { return m_digits; }
    [[nodiscard]] const QList<double>& bids() const { return m_bids; }
    [[nodiscard]] const QList<double>& asks() const { return m_asks; }
    [[nodiscard]] QString reading() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QList<double> m_bids; ///< oldest first
    QList<double> m_asks; ///< in step with the bids
    int m_digits = 2;
    bool m_stale = false;
};
