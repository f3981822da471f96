#pragma once

#include "support/StubHttpServer.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QWebSocket>
#include <QWebSocketServer>

#include <functional>
#include <memory>

/// The platform as far as the terminal asks it, in the process that measures; keeps the last feed connection.
class StubPlatform final {
    Q_DISABLE_COPY_MOVE(StubPlatform)

public:
    static constexpr int digits = 5; ///< of every symbol

    /// With so many symbols, SYM00 and so on. `helloPrices` are the quotes that a feed begins with, an
    /// object; without them it is each symbol's lowest one.
    explicit StubPlatform(int symbols, const QByteArray& helloPrices = {});
    ~StubPlatform();

    [[nodiscard]] static QString symbolName(int index);
    /// "SYM00":{"bid":1.10000,"ask":1.10010} for 0 points.
    [[nodiscard]] static QByteArray quote(int index, int points);
    /// Between the two prices of such a quote.
    [[nodiscard]] static double middle(int points);
    /// Where a symbol's candles begin to be; they reach some 900 points higher.
    [[nodiscard]] static int lowestPoints(int index);

    [[nodiscard]] QString url() const;

    /// Sends price snapshots, a few ahead of what the terminal has dealt with.
    void sendSnapshots(int count);

    /// Hears of each request once all of it is there.
    std::function<void(const StubRequest&)> onRequest;
    /// Hears of each text of the terminal, which is its ping; a pong is sent.
    std::function<void()> onPing;

    qint64 acceptedAt = 0; ///< when the last sign-in was, in ns of CLOCK_MONOTONIC
    int connections = 0;
    std::unique_ptr<QWebSocket> client;

private:
    struct History {
        qint64 newestMs = 0;
        QByteArray text;
    };
    [[nodiscard]] QByteArray prices(int phase) const;
    [[nodiscard]] QByteArray history(const QByteArray& target);
    void takeClient();
    void takeRequest(const StubRequest& request);

    int m_symbols;
    QHash<QByteArray, History> m_histories; ///< by request; making one takes milliseconds
    StubHttpServer m_http;
    QWebSocketServer m_feeds{QStringLiteral("bench"), QWebSocketServer::NonSecureMode};
    QString m_hello;
    int m_phase = 0;
    int m_pongs = 0;
};
