#pragma once

#include "chart/data/ChartView.h"
#include "chart/data/TradeLevel.h"

#include <QList>
#include <QString>

#include <optional>

/// Moving a trade's level line with the pointer. The line itself stays where the server has it; only the
/// result is told. Knows no widget.
class LevelDrag final {
public:
    /// How far above or below its line, in pixels, a press still takes a level.
    static constexpr int reach = 6;

    /// What a finished drag asks for.
    struct Drop {
        QString tradeId;
        QString kind;
        double price = 0.0;

        bool operator==(const Drop&) const = default;
    };

    /// The index of the draggable level nearest to pixel row `y` within reach, or -1; of equally near ones
    /// that which is painted last. Levels outside the plot's prices are not painted and cannot be taken.
    [[nodiscard]] static qsizetype levelAt(const QList<TradeLevel>& levels, const ChartView& view, int y);

    /// Takes the level at pixel row `y`; false when there is none.
    bool begin(const QList<TradeLevel>& levels, const ChartView& view, int y);

    /// The pointer is at row `y`, which counts clamped to the plot. A pointer that has not left the row of
    /// the press moves nothing: a plain click must not ask for another price.
    void move(const ChartView& view, int y);

    /// The level is to stand at a price, such as keys choose.
    void moveTo(double price);

    /// The levels were replaced. Follows the one being dragged; false when it is gone, cannot be dragged any
    /// more or has another price by now, which ends the drag.
    bool follow(const QList<TradeLevel>& levels);

    void cancel() { m_active = false; }

    /// Ends the drag. Gives the level's new price rounded to `digits` decimals; nothing for the old price, or
    /// for one that is not above 0, which would remove the level.
    [[nodiscard]] std::optional<Drop> drop(int digits);

    [[nodiscard]] bool isActive() const { return m_active; }
    /// The dragged level's index in the latest list; -1 while none is dragged.
    [[nodiscard]] qsizetype index() const { return m_active ? m_index : -1; }
    /// Where the dragged level is shown.
    [[nodiscard]] double price() const { return m_price; }

private:
    bool m_active = false;
    bool m_moved = false;
    qsizetype m_index = -1;
    int m_pressRow = 0;
    TradeLevel m_level; ///< as it was when taken
    double m_price = 0.0;
};
