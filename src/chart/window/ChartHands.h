#pragma once

#include "chart/data/CrosshairPlace.h"
#include "chart/gestures/ChartGestures.h"

#include <QObject>
#include <QPoint>
#include <QRegion>

#include <optional>

class ChartWidget;
class DrawingList;
class QKeyEvent;
class QMouseEvent;
class TextPainter;

/// Mouse and keys on a chart: hands its events to ChartGestures and carries the answers out. What they ask
/// of others is told by signals; the chart passes them on as its own.
class ChartHands final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ChartHands)

public:
    /// All of them outlive the hands. `texts` measures what is painted along with a gesture.
    ChartHands(ChartWidget& chart, DrawingList& drawings, TextPainter& texts);
    ~ChartHands() override;

    [[nodiscard]] const ChartGestures& gestures() const { return m_gestures; }
    /// The pixel of the crosshair, whichever hand has put it there; nothing while it is out of view.
    [[nodiscard]] std::optional<QPoint> crosshairPixel() const;
    /// See ChartWidget::crosshair().
    [[nodiscard]] std::optional<CrosshairPlace> crosshair() const;

    /// See ChartWidget::setTool().
    void setTool(const QString& key);
    /// See ChartWidget::setMeasureMode().
    void setMeasureMode(bool on);
    /// The chart's levels have been replaced.
    void followLevels();
    /// The chart is about to show other candles, which move the prices away from below the pointer.
    void cancelLevel();
    /// The numbers of the bars in view have become higher by so many.
    void renumberBars(double bars) { m_gestures.renumberBars(bars); }
    /// Ends what lasts only while it is held; a dragged level goes back to its place.
    void letGo();

    /// The events of the chart; false for those that it has no use for.
    bool press(const QMouseEvent& event);
    void move(const QMouseEvent& event);
    bool release(const QMouseEvent& event);
    bool takeKey(const QKeyEvent& event);
    /// The pointer has left the chart.
    void leave();
    void loseFocus();

Q_SIGNALS:
    void crosshairMoved(const QString& ohlc);
    /// Tool, what it has placed, ruler, or what the keys hold.
    void settingsChanged();
    void drawingCreated(const Drawing& drawing);
    void toolFinished();
    void levelDragged(const QString& tradeId, const QString& kind, double price);

private:
    void take(const ChartGestures::Press& press, const QRegion& shownBefore);
    void drag(const QPoint& position);
    /// The button or the second Enter lets go of what is held.
    void drop();
    [[nodiscard]] bool cancel();
    void finishTool();
    /// The pointer's shape, and what the next key does, follow what is in hand.
    void showHold();

    void movePointer(const QPoint& position);
    /// A step of the keyboard's crosshair, which appears if it was hidden.
    [[nodiscard]] bool moveCrosshair(const KeyboardCrosshair::Move& move);
    /// What Enter does at the keyboard's crosshair, which is not hidden.
    [[nodiscard]] bool enterAtCrosshair();
    /// Brings the keyboard's crosshair into view. A held level that cannot be shown goes back to its place.
    [[nodiscard]] bool revealCrosshair();
    [[nodiscard]] bool hideKeyboardCrosshair();
    void repaintCrosshair(const std::optional<QPoint>& before);
    void tellCrosshair();

    [[nodiscard]] ChartGestures::Ground ground() const;
    [[nodiscard]] QRegion gestureArea() const;

    ChartWidget& m_chart;
    DrawingList& m_drawings;
    TextPainter& m_texts;
    ChartGestures m_gestures;
    QPoint m_pointer = {-1, -1}; ///< of the mouse
    bool m_heldByKeys = false;   ///< as last told
};
