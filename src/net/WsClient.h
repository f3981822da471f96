#pragma once

#include "net/FeedBacklog.h"
#include "net/SocketIntake.h"

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QObject>
#include <QTimer>
#include <QWebSocket>
#include <optional>

class TerminalSettings;

/// Keeps one WebSocket connection to the platform's live feed and turns its messages into signals.
/// Every end of a connection, a connection that never came up included, is followed by one retry
/// after 1, 2, 4, 8, 16, then 30 seconds, for ever. Apart from its ping it sends nothing.
///
/// Messages pass through a FeedBacklog, one by one and all of them. The end of a connection is told when all
/// that came before it has been; a new start() forgets what the old connection left unread. While too much
/// waits to be read, the connection rests.
class WsClient final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(WsClient)

public:
    /// The settings must outlive the client.
    explicit WsClient(const TerminalSettings& settings, QObject* parent = nullptr);
    ~WsClient() override;

    /// Connects, and keeps connecting for the rest of this object's life.
    void start();

    /// How long an attempt may take before it is given up, in ms (10000 unless set).
    void setAttemptTimeout(int milliseconds);
    /// How long a second of back-off lasts, in ms (1000 unless set); lets tests retry at once.
    void setRetrySecond(int milliseconds);

Q_SIGNALS:
    void connected();
    void disconnected(int retryInSeconds);
    void helloReceived(const QJsonObject& hello);
    void pricesUpdated(const QJsonObject& data);
    void tradesUpdated(const QJsonArray& rows);
    void ordersChanged(const QJsonObject& event);
    void accountUpdated(const QJsonObject& event);
    /// Round trip of the last ping in ms; 0 for a pong that no ping asked for.
    void latencyChanged(int milliseconds);
    /// Totals of text bytes since construction, never reset.
    void trafficChanged(quint64 rxBytes, quint64 txBytes);
    /// Progress and errors. The message may hold server text, but never the token.
    void logMessage(const QString& source, const QString& message);

public Q_SLOTS:
    void onConnected();
    void onDisconnected();
    void onTextMessage(const QString& text);
    void sendPing();
    void takePong();

private:
    void open();
    void reopen();
    void finishAttempt();
    void giveUpAttempt();
    void reportError();
    void log(const QString& message);

    const TerminalSettings& m_settings;
    QWebSocket m_socket;
    SocketIntake m_intake;
    FeedBacklog m_backlog;
    QTimer m_pingTimer;
    QElapsedTimer m_pingClock;
    bool m_pingPending = false;
    bool m_wanted = false;
    quint64 m_rxBytes = 0;
    quint64 m_txBytes = 0;
    qint32 m_retryDelayMs;

    QTimer m_retryTimer;
    QTimer m_attemptTimer;
    bool m_attemptRunning = false;
    bool m_endUntold = false;           ///< the connection has ended, but what it brought has not been read
    std::optional<QString> m_lastError; // of this attempt: Qt may report the same error twice
    int m_retrySecondMs = 1000;
};
