#include "faults/Desk.h"

#include "chart/window/ChartWidget.h"
#include "support/Records.h"
#include "support/ShortSteps.h"

#include <QNetworkReply>
#include <QTreeWidget>
#include <QUrl>
#include <QtTest>

using namespace Qt::StringLiterals;

namespace faults {

namespace {

/// So many records of a kind, with ids that begin with this letter.
template <typename Make> QJsonArray rows(int count, char letter, Make make)
{
    QJsonArray all;
    for (int i = 1; i <= count; ++i)
        all.append(make(QString(QLatin1Char(letter)) + QString::number(i), i));
    return all;
}

/// Long enough that an encrypted answer takes several records.
StubAnswer padded(StubAnswer answer, bool wanted)
{
    constexpr qsizetype severalRecords = 40 * 1024;
    if (wanted)
        answer.body += QByteArray(severalRecords, ' ');
    return answer;
}

} // namespace

Desk::Desk(StubHttpServer::Transport transport)
    : server(transport)
    , line(static_cast<quint16>(QUrl(server.url()).port()), transport == StubHttpServer::Transport::Tls)
    , heart([this] { giveUpHeld(); })
{
    TerminalSettings& settings = TerminalSettings::instance();
    settings.setServerUrl(line.url());
    settings.setToken(u"a-token-as-long-as-tokens-are-0123456789abcdef0123456789abcdef"_s);
    const auto say
        = [this](const QString& source, const QString& message) { said.append(source + u": "_s + message); };
    QObject::connect(&loader, &AccountLoader::journalLine, &loader, say);
    QObject::connect(&actions, &TradeActions::journalLine, &actions, say);
    QObject::connect(&chart, &ChartWindow::logMessage, &chart, say);
    QObject::connect(&loader, &AccountLoader::historyRead, &loader,
        [this](const QJsonArray& rows) { history = rows.size(); });
    QObject::connect(&api, &ApiClient::loginFailed, &api,
        [this](const QString& message) { said.append(u"Sign-in failed: "_s + message); });
    QObject::connect(&api, &ApiClient::loginSucceeded, &api, [this] { said.append(u"Signed in"_s); });
    acceptChanges();
    server.on("GET", "/warm", padded(StubAnswer::json("[]"), transport == StubHttpServer::Transport::Tls));
    stock(1);
}

Desk::~Desk() = default;

void Desk::acceptChanges()
{
    const auto answer = [&](const char* verb, const char* path, const StubAnswer& what) {
        server.on(verb, path, padded(what, server.url().startsWith("https"_L1)));
    };
    for (const char* path :
        {"/api/trades/place", "/api/trades/close/t1", "/api/trades/cancel/p1", "/api/drawings"})
        answer("POST", path, StubAnswer::json(R"({"id":"new"})"));
    for (const char* path : {"/api/trades/modify/t1", "/api/drawings/d1", "/warm"})
        answer("PUT", path, StubAnswer::json(R"({"id":"same"})"));
    answer("DELETE", "/api/drawings/d1", StubAnswer::json("{\"ok\":true}"));
    answer("POST", "/api/auth/login", StubAnswer::json(R"({"token":"t","email":"a@b.c","name":"A"})"));
}

void Desk::stock(int count)
{
    const bool tls = server.url().startsWith("https"_L1);
    const auto list = [&](const char* path, const QJsonArray& records) {
        server.on("GET", path, padded(StubAnswer::list(records), tls));
    };
    list("/api/accounts", rows(count, 'a', [](const QString& id, int) { return records::account(id); }));
    list("/api/trades/open", rows(count, 't', [](const QString& id, int) { return records::position(id); }));
    list("/api/trades/pending",
        rows(count, 'p', [](const QString& id, int) { return records::pendingOrder(id); }));
    list("/api/trades/history",
        rows(count, 'h', [](const QString& id, int) { return records::closedTrade(id); }));
    list("/api/candles", rows(count, 'c', [](const QString&, int i) {
        return records::candle(
            u"2026-06-01T%1:00:00.000Z"_s.arg(i, 2, 10, QLatin1Char('0')), 1.1, 1.2, 1.0, 1.15, 7);
    }));
    list("/api/drawings", rows(count, 'd', [](const QString& id, int i) {
        return QJsonObject{{u"id"_s, id}, {u"toolType"_s, u"hline"_s},
            {u"points"_s, QJsonArray{QJsonObject{{u"time"_s, u"1000"_s}, {u"price"_s, 1.0 + i}}}}};
    }));
    server.on("GET", "/api/settings/public",
        padded(StubAnswer::json(QJsonObject{{u"settings"_s,
                   QJsonObject{{u"terminalServerUrl"_s, u"https://x%1.example"_s.arg(count)}}}}),
            tls));
    server.on("GET", "/api/news/upcoming",
        padded(StubAnswer::json(records::news(
                   rows(count, 'n', [](const QString& id, int) { return records::newsEvent(id); }))),
            tls));
}

void Desk::load()
{
    loader.refreshAccounts();
    chart.load();
    news.refresh();
    settle();
}

bool Desk::isWaiting() const
{
    return api.findChild<QNetworkReply*>() != nullptr;
}

void Desk::giveUpHeld()
{
    // Given up is what nothing more will come to: the line and the event loop have had their turns, and since
    // then the line has neither struck nor got a connection.
    constexpr int quietTurns = 5;
    const LineNews& told = line.news();
    const auto events = std::pair(told.struck.load(), told.connections.load());
    if (!told.holding || events != m_events) {
        m_events = events;
        m_quietTurns = 0;
        return;
    }
    if (told.turns < m_pings)
        return;
    if (++m_quietTurns > quietTurns) {
        for (QNetworkReply* reply : api.findChildren<QNetworkReply*>())
            reply->abort();
        m_quietTurns = 0;
    }
    ++m_pings;
    line.ping();
}

void Desk::settle()
{
    constexpr int quietTurns = 3;
    for (int quiet = 0; quiet < quietTurns; ++quiet) {
        if (isWaiting())
            quiet = 0;
        QTRY_VERIFY_WITH_TIMEOUT(!isWaiting(), 30000);
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

void Desk::turn()
{
    // A way of its own: what was sent before it on the line has arrived when this has.
    QNetworkAccessManager manager;
    bool answered = false;
    QObject::connect(&manager, &QNetworkAccessManager::finished, &manager, [&](QNetworkReply* reply) {
        reply->deleteLater();
        answered = true;
    });
    for (int i = 0; i < 3; ++i) {
        answered = false;
        manager.get(QNetworkRequest(QUrl(server.url() + u"/warm"_s)));
        QTRY_VERIFY(answered);
    }
}

QString Desk::shown() const
{
    return u"accounts %1, open %2, pending %3, history %4, candles %5, drawings %6, news %7"_s.arg(
        QString::number(book.accounts().size()), QString::number(book.openTrades().size()),
        QString::number(book.pendingOrders().size()), QString::number(history),
        QString::number(chart.chart().candles().size()), QString::number(chart.chart().drawings().size()),
        QString::number(news.findChild<QTreeWidget*>()->topLevelItemCount()));
}

} // namespace faults
