#pragma once

#include <QBrush>
#include <QIcon>
#include <QTreeWidgetItem>

#include <memory>

/// The brushes and arrows that all rows of Market Watch share, in the colours of the current theme.
struct QuoteLook final {
    bool dark = false;
    QBrush text;
    QBrush rising;
    QBrush falling;
    QBrush gain;  ///< a daily change of 0 or more
    QBrush stale; ///< numbers that may not hold any more
    QIcon up;
    QIcon down;
    QIcon staleUp;
    QIcon staleDown;

    [[nodiscard]] static QuoteLook forCurrentTheme();
};

/// Which way a price last moved.
enum class Tick : quint8 { None, Up, Down };

/// One symbol's row in Market Watch. Holds numbers and directions and turns them into text, colour and
/// arrow only when the row is looked at, so that a price which nobody sees is never formatted and a new
/// theme needs nothing but a repaint. Setters tell no view; the owner asks for one repaint a snapshot.
class QuoteItem final : public QTreeWidgetItem {
public:
    enum Column { Symbol, Bid, Ask, Daily, ColumnCount };

    /// Rows share `look` with the pane, because they outlive its members. `digits` is clamped to what prices
    /// can have.
    QuoteItem(
        std::shared_ptr<const QuoteLook> look, const QString& name, const QString& description, int digits);

    /// The whole symbol; the row shows its beginning.
    [[nodiscard]] QString symbol() const { return m_name; }
    /// A new price. Tick::None keeps the direction shown before.
    void setBid(double bid, Tick tick);
    void setAsk(double ask, Tick tick);
    /// In percent.
    void setDailyChange(double percent);
    /// No prices come any more, or do again: old ones are dimmed and slanted, the arrow is dimmed.
    void setStale(bool stale) { m_stale = stale; }
    [[nodiscard]] bool isStale() const { return m_stale; }

    [[nodiscard]] QVariant data(int column, int role) const override;

private:
    /// The arrow, for the eye and in words.
    [[nodiscard]] QVariant symbolData(int role) const;
    [[nodiscard]] QVariant textOf(int column) const;
    [[nodiscard]] QVariant brushOf(int column) const;
    [[nodiscard]] const QBrush& brushOf(Tick tick) const;

    std::shared_ptr<const QuoteLook> m_look;
    QString m_name;
    double m_bid = 0.0; ///< 0: no price yet
    double m_ask = 0.0;
    double m_daily = 0.0;
    int m_digits;
    Tick m_bidTick = Tick::None;
    Tick m_askTick = Tick::None;
    bool m_hasDaily = false;
    bool m_stale = false;
};
