#pragma once

#include "CommandDriver.h"
#include "app/ui/Theme.h"

namespace fixtures {

/// A terminal whose feed has brought a rising price of each symbol.
struct Terminal final {
    CommandDriver d;

    Terminal()
    {
        setTheme(false);
        applyTheme(*qApp);
        quote(1.3, 150.7);
        QTRY_COMPARE(row(0).text(1), QStringLiteral("1.30000"));
    }
    void quote(double euro, double yen)
    {
        d.f.feed.send(records::priceUpdate({{"EURUSD", euro, euro + 0.1}, {"USDJPY", yen, yen + 0.1}}));
    }
    void loseFeed()
    {
        d.f.feed.setMode(StubFeedServer::Mode::CloseAtOnce);
        d.f.feed.cut();
        QTRY_VERIFY(d.f.window->findChild<QLabel*>(QStringLiteral("connectionLabel"))
                        ->text()
                        .contains(QStringLiteral("Disconnected")));
    }
    /// The feed comes back, and says what `hello` says.
    void findFeed(const QJsonObject& hello)
    {
        d.f.feed.setGreeting(hello);
        d.f.feed.setMode(StubFeedServer::Mode::Serve);
        QTRY_VERIFY_WITH_TIMEOUT(d.f.window->findChild<QLabel*>(QStringLiteral("connectionLabel"))
                                     ->text()
                                     .contains(QStringLiteral(">●</span> Connected")),
            20000);
    }
    [[nodiscard]] QTreeWidgetItem& row(int index) const
    {
        return *d.f.list("marketWatchSymbols").topLevelItem(index);
    }
    [[nodiscard]] QColor color(int row_, int column) const { return row(row_).foreground(column).color(); }
    [[nodiscard]] bool looksOld(int row_, int column) const { return row(row_).font(column).italic(); }
};

[[nodiscard]] inline QJsonObject euroHello(const records::Value& bid, const records::Value& ask)
{
    return records::hello({records::symbol("EURUSD").rank(1).with("dailyOpen", 1.0),
                              records::symbol("USDJPY").rank(2).digits(3)},
        records::prices({{"EURUSD", bid, ask}}));
}

} // namespace fixtures
