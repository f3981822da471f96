#pragma once

#include "pixel/ChartedPrices.h"
#include "pixel/ScreenFile.h"
#include "pixel/Spot.h"
#include "pixel/XvfbServer.h"
#include "scenes/StubPlatform.h"
#include "scenes/WatchedProgram.h"

#include <QHash>
#include <QPoint>
#include <QRect>

#include <vector>

/// The real terminal on an X server of its own, signed in to a platform in this process, with charts side by
/// side.
class Desk final {
    Q_DISABLE_COPY_MOVE(Desk)

public:
    /// Starts all of that; comes back when every chart has painted its history and nothing moves.
    explicit Desk(int charts);

    [[nodiscard]] int charts() const { return m_charts; }
    [[nodiscard]] const Screen& screen() const { return m_file.screen(); }
    [[nodiscard]] StubPlatform& platform() { return m_platform; }
    [[nodiscard]] const WatchedProgram& program() const { return m_program; }
    [[nodiscard]] const XvfbServer& server() const { return m_server; }
    [[nodiscard]] const QString& display() const { return m_server.display(); }
    /// Whether the terminal has processors of its own, apart from the X server and this process.
    [[nodiscard]] bool isApart() const { return m_isApart; }
    [[nodiscard]] ChartedPrices& prices() { return m_prices; }

    /// Sends a message of the feed; tells when, in ns of CLOCK_MONOTONIC, just before it was given to the
    /// socket.
    qint64 send(const QString& message);

    /// Where each chart tells its price, and how each price looks there: learned by sending each of them.
    [[nodiscard]] std::vector<Spot> learnSpots();
    /// The middle of the button to buy on the first chart.
    [[nodiscard]] QPoint buyButton() const { return m_buy.center(); }

    /// Gives up unless the newest candle of each chart has taken the last price that was sent: a chart that
    /// only moves its price line does less than a trader's.
    void checkNewestCloses();

    /// Waits until a part of the screen has not changed for a while.
    void waitForRest(const PixelRect& part) const;

private:
    struct Settings {
        explicit Settings(const StubPlatform& platform, int charts);
    };
    void findPlaces();
    /// Where a chart tells its prices.
    [[nodiscard]] PixelRect axisOf(int chart) const;
    /// Gives every chart a price; comes back when all of them show it and nothing moves.
    void showEverywhere(int price);
    /// What a chart reads aloud whose newest candle closes elsewhere, with where it should; empty if none
    /// does.
    [[nodiscard]] QString wrongReading();

    int m_charts;
    XvfbServer m_server;
    ScreenFile m_file;
    ChartedPrices m_prices;
    StubPlatform m_platform{ChartedPrices::symbols, m_prices.quotes()};
    Settings m_settings;
    WatchedProgram m_program;
    QHash<QByteArray, QRect> m_places; ///< of the charts, by symbol
    QRect m_buy;
    bool m_isApart = false;
};
