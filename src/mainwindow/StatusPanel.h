#pragma once

#include <QObject>
#include <QString>
#include <QTimer>

class ErrorLabel;
class QComboBox;
class QLabel;
class QStatusBar;
class WsClient;

/// The status bar: on its right side account selector, connection, latency, traffic and user, on its left
/// what a chart's tool waits for, or where help is, and for a moment what went wrong.
class StatusPanel final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(StatusPanel)

public:
    /// Adds its widgets to the bar, which must outlive the panel. `server` is the address shown beside
    /// the connection state.
    StatusPanel(QStatusBar& bar, const QString& server, QObject* parent = nullptr);

    /// Shows connection, latency and traffic of a feed.
    void follow(const WsClient& feed);

    /// The combo box that lists the accounts; filled by whoever knows them.
    [[nodiscard]] QComboBox& accountSelector() const { return *m_accountSelector; }

    /// The signed-in user's e-mail address.
    void setUser(const QString& email);
    /// Shows whether the feed is connected.
    void setConnected(bool connected);
    /// Why what the trader wanted was not done: shown for ten seconds, or until there is something else to
    /// show, and spoken by screen readers. An empty one takes the last one away.
    void setFailure(const QString& line);
    /// What the next click on the chart does; empty where a click means nothing special.
    void setHint(const QString& hint);

    /// The host of a server's address; the whole of an address without one.
    [[nodiscard]] static QString hostOf(const QString& address);
    /// Kilobytes with one decimal, whatever the locale.
    [[nodiscard]] static QString kilobytes(quint64 bytes);

public Q_SLOTS:
    void setLatency(int milliseconds);
    /// Totals in bytes. Shown a quarter of a second later, for all that has come by then: the message that
    /// brings them may bring a price, which comes first.
    void setTraffic(quint64 received, quint64 sent);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showTraffic();
    void keepRoomFor(const QString& message);
    void showMessage();

    QStatusBar& m_bar;
    QString m_hint;
    QString m_failure;
    QString m_server;
    QComboBox* m_accountSelector;
    ErrorLabel* m_spokenFailure; ///< the bar's messages are tips to a reader, which speaks none
    QLabel* m_connection;
    QLabel* m_latency;
    QLabel* m_traffic;
    QLabel* m_user;
    QTimer m_trafficPause;
    quint64 m_received = 0;
    quint64 m_sent = 0;
};
