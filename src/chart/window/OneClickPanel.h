#pragma once

#include <QWidget>

class DecimalSpinBox;
class QPushButton;

/// The overlay in the corner of a chart that sells or buys its symbol at market with one click. It only
/// reports the wish. Presses and moves on it do not reach the chart below; the wheel does, unless the volume
/// has the focus. Its buttons can be reached by Tab, and in no other way does the focus come to them.
class OneClickPanel final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(OneClickPanel)

public:
    OneClickPanel(const QString& symbol, QWidget* parent);
    ~OneClickPanel() override;

    /// The prices on the buttons, with so many decimals.
    void setQuote(double bid, double ask, int digits);
    /// Whether the prices may not hold any more: then the buttons are pale and their captions slanted. They
    /// trade all the same.
    void setStale(bool stale);
    /// The chosen volume in lots, 0.01 to 1000.
    [[nodiscard]] double lots() const;

Q_SIGNALS:
    /// `side` is "SELL" or "BUY".
    void quickTradeRequested(const QString& symbol, const QString& side, double lots);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void request(const QString& side);
    /// Puts words into the status bar, for a button that the keyboard has come to; empty ones end that.
    void tell(const QString& words);

    QString m_symbol;
    QPushButton* m_sell;
    DecimalSpinBox* m_volume;
    QPushButton* m_buy;
    double m_bid = 0.0;
    double m_ask = 0.0;
    int m_digits = -1;
    bool m_stale = false;
};
