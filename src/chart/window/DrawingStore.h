#pragma once

#include "chart/data/Drawing.h"

#include <QHash>
#include <QObject>

#include <functional>

class ApiClient;
class ChartWidget;
class QJsonDocument;
class QNetworkReply;
class ReadCoalescer;
struct ReplyOutcome;

/// Keeps the drawings of one chart on the server, for its symbol and account. The list is never read while a
/// change is under way, and is read again if a change was begun before the answer came: so no drawing is lost
/// or shown twice, whatever the order of the replies.
class DrawingStore final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(DrawingStore)

public:
    /// Client and chart must outlive the store. Nothing is requested before load().
    DrawingStore(ApiClient& api, ChartWidget& chart, const QString& symbol, const QString& accountId,
        QObject* parent = nullptr);
    ~DrawingStore() override;

    [[nodiscard]] const QString& accountId() const { return m_accountId; }
    /// Shows the drawings of another account and reads them anew; an equal id does nothing. The old account's
    /// drawings that the server does not have are kept, and shown again with that account.
    void setAccountId(const QString& accountId);
    /// Reads the drawings of the chart. Drawings that the server does not have stay on the chart.
    void load();

Q_SIGNALS:
    /// A request failed; a text for the Journal.
    void failed(const QString& message);

private:
    /// What is known about the drawings of one account.
    struct Scope {
        int changing = 0;         ///< changes that the server has not answered
        quint64 changes = 0;      ///< changes begun so far
        QList<Drawing> confirmed; ///< created since the last list was read
        QList<Drawing> unsaved;   ///< not on the server, while another account is shown
    };

    void create(const Drawing& drawing);
    void update(const Drawing& drawing);
    void remove(const QString& id);
    /// Waits for the end of a change: reports a failure as `what` with its reason, then calls `ended` with
    /// the outcome.
    using Ended = std::function<void(const ReplyOutcome& outcome, Scope& changed)>;
    void track(QNetworkReply* reply, const QString& what, Ended ended);
    void requestRead();
    void readWhenQuiet();
    void take(const QJsonDocument& document, const QString& error);
    [[nodiscard]] QString listPath() const;
    [[nodiscard]] Scope& scope() { return m_scopes[m_accountId]; }

    ApiClient& m_api;
    ChartWidget& m_chart;
    ReadCoalescer* m_reads;
    QString m_symbol;
    QString m_accountId;
    QHash<QString, Scope> m_scopes;
    bool m_readWanted = false;
    unsigned int m_generation = 0;
};
