#pragma once

#include "app/ui/PoliteNews.h"
#include "chart/window/ChartMark.h"

#include <QHash>
#include <QList>

#include <optional>

struct ChartFrame;

/// What a chart tells screen readers: what is to be read on it, and which marks come and go. Makes nothing
/// until one asks or is there to be told. A chart out of sight, as behind another tab, reads out no news.
class ChartReader final {
    Q_DISABLE_COPY_MOVE(ChartReader)

public:
    explicit ChartReader(ChartWidget& chart);
    ~ChartReader();

    /// The bars under the crosshair and at the end, prices and indicators; see speech::chartReading().
    [[nodiscard]] QString reading() const;
    /// Something that the reading holds has changed.
    void noteReading() { m_news.note(); }
    /// The chart is in sight, and may not have been so before; news that have waited for that are told.
    void noteSeen();
    /// Levels, drawings or the button may have changed: those that are gone are taken away at once.
    void noteMarks();

    /// Every mark there is now: levels, drawings, the button.
    [[nodiscard]] const QList<ChartMarkKey>& marks() const { return places().keys; }
    /// The accessible side of one of them.
    [[nodiscard]] QAccessibleInterface* mark(const ChartMarkKey& key);
    /// Kind, trade or points, and price; empty when it is gone.
    [[nodiscard]] QString markName(const ChartMarkKey& key) const;
    /// Which of the levels or drawings it is; -1 when it is gone.
    [[nodiscard]] qsizetype markIndex(const ChartMarkKey& key) const
    {
        return places().indices.value(key, -1);
    }

    [[nodiscard]] PoliteNews& news() { return m_news; }

private:
    struct Known {
        QAccessible::Id id = 0;
        QString toldName;
    };
    /// The marks in their order, and where each is among the levels or the drawings. An account may have
    /// hundreds of trades, and readers ask for one mark after the other.
    struct Places {
        QList<ChartMarkKey> keys;
        QHash<ChartMarkKey, qsizetype> indices;

        void add(ChartMarkKey key, qsizetype index);
    };

    [[nodiscard]] const Places& places() const;
    /// Of a level of the frame, at the price where it lies or is held.
    [[nodiscard]] QString levelName(const ChartFrame& frame, qsizetype index) const;
    [[nodiscard]] QString markName(const ChartFrame& frame, const ChartMarkKey& key) const;
    bool tellNews();
    Known& know(const ChartMarkKey& key);

    ChartWidget& m_chart;
    PoliteNews m_news;
    QString m_toldReading;
    bool m_unheard = false; ///< news wait until the chart is in sight
    QHash<ChartMarkKey, Known> m_known;
    mutable std::optional<Places> m_places; ///< nothing while it is to be worked out anew
};
