#pragma once

#include "chart/data/ChartColors.h"
#include "chart/data/ChartType.h"
#include "chart/data/ChartView.h"
#include "chart/data/MovingAverageSpec.h"

#include <QList>
#include <QPixmap>

#include <optional>

class QPainter;
class QRegion;
struct ChartFrame;

/// Paints frames, keeping the layers that change rarely as a picture in device pixels. The picture is used
/// while everything that it shows stays equal, so nobody has to announce a change. A frame that differs from
/// the one before is painted straight: while panning every frame differs, and a picture would be copied only
/// once. The picture is made when the same content is asked for again. While ticks make the newest candle the
/// largest volume, the scale of all volumes changes with each of them: then the series is painted over a
/// picture of what lies below them.
class BandCache final {
public:
    /// Paints what of the frame lies in `exposed`, in the frame's coordinates; the painter must be clipped to
    /// it, as in a paint event. A part of a frame always comes from the picture, since painted straight the
    /// broken lines of the grid would begin anew at the edge of the clip.
    void paint(QPainter& painter, const ChartFrame& frame, const QRegion& exposed);

    /// How often candles other than the newest were painted, on which the speed of a chart depends.
    [[nodiscard]] quint64 seriesPaints() const { return m_seriesPaints; }

private:
    /// What the kept layers show.
    struct Content {
        ChartView view;
        quint64 seriesRevision = 0;
        qint32 largestVolume = 1;
        qsizetype liveBar = -1;
        QList<MovingAverageSpec> averages;
        ChartColors colors;
        ChartType type = ChartType::Candles;
        int digits = 0;
        qint64 timeframeMs = 0;
        qreal scale = 1.0;

        bool operator==(const Content&) const = default;
    };

    [[nodiscard]] static bool sameGround(const Content& a, const Content& b);
    void paintKept(
        QPainter& painter, const ChartFrame& frame, const Content& content, const QRegion& exposed);

    std::optional<Content> m_content; ///< of the last frame, and of the pictures when there are any
    QPixmap m_picture;                ///< the kept layers without the newest candle
    QPixmap m_ground;                 ///< the kept layers without any candle
    quint64 m_seriesPaints = 0;
};
