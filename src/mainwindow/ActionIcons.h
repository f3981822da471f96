#pragma once

#include <QIcon>
#include <QLatin1StringView>

/// What a small picture stands for; each command has one of its own.
enum class Pictogram {
    NewChart,
    NewOrder,
    Exit,
    MarketWatch,
    Navigator,
    Toolbox,
    PopupPrices,
    RestoreLayout,
    LightTheme,
    DarkTheme,
    AlgoTrading,
    Cursor,
    Crosshair,
    HorizontalLine,
    VerticalLine,
    TrendLine,
    Rectangle,
    Fibonacci,
    Candlesticks,
    Bars,
    Line,
    AutoScroll,
    ChartShift,
    ZoomIn,
    ZoomOut,
    Refresh,
    DataWindow,
    Properties,
    Specification,
    DepthOfMarket,
    ExpertsFolder,
    Tile,
    Cascade,
    Close,
    Guide,
    Updates,
    About,
    M1,
    M5,
    M15,
    H1,
    H4,
    D1,
    W1,
    MN,
    Count ///< how many there are; no picture
};

/// An icon that is drawn when it is shown: at the size and pixel ratio asked for, in the colours of the theme
/// in force. After a theme switch it needs a repaint and no more. Making an icon costs next to nothing.
[[nodiscard]] QIcon actionIcon(Pictogram pictogram);
/// The icon of a drawing (see Pictograms.h); the text of the drawing must outlive the icon.
[[nodiscard]] QIcon actionIcon(QLatin1StringView drawing);
