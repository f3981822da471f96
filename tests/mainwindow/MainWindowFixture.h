#pragma once

#include "app/base/TerminalSettings.h"
#include "mainwindow/ChartArea.h"
#include "mainwindow/MainWindow.h"
#include "net/ApiClient.h"
#include "support/StubFeedServer.h"
#include "support/StubHttpServer.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QJsonDocument>
#include <QLabel>
#include <QTreeWidget>
#include <QtTest>

/// A whole main window against scripted servers on one loopback port: two accounts, two symbols.
struct MainWindowFixture {
    StubHttpServer http;
    StubFeedServer feed{http};
    std::unique_ptr<MainWindow> window;

    MainWindowFixture()
    {
        TerminalSettings& settings = TerminalSettings::instance();
        settings.setServerUrl(http.url());
        settings.setToken(QStringLiteral("secret-token-123"));
        settings.setWindowLayout({}, {});
        settings.setRestoringLayout(false);
        settings.setChartsLayout({});
        feed.setGreeting(R"({"type":"hello",
            "symbols":[{"name":"EURUSD","digits":5,"sortOrder":1,"description":"Euro"},
                       {"name":"USDJPY","digits":3,"sortOrder":2,"description":"Yen"}],
            "prices":{"EURUSD":{"bid":1.1,"ask":1.2},"USDJPY":{"bid":"150.5","ask":"150.6"}}})");
        http.on("GET", "/api/accounts", StubAnswer::json(accounts()));
        http.on("GET", "/api/trades/open", StubAnswer::json("[]"));
        http.on("GET", "/api/trades/open?accountId=a1", StubAnswer::json(openTrades()));
        http.on("GET", "/api/trades/pending", StubAnswer::json("[]"));
        http.on("GET", "/api/trades/history", StubAnswer::json("[]"));
        http.on("GET", "/api/candles", StubAnswer::json("[]"));
        http.on("GET", "/api/drawings", StubAnswer::json("[]"));
        http.on("GET", "/api/news/upcoming", StubAnswer::json(R"({"events":[]})"));
    }

    [[nodiscard]] static QByteArray accounts()
    {
        return R"([{"id":"w","isWallet":true,"status":"ACTIVE","balance":"5"},
                   {"id":"a1","type":"DEMO","status":"ACTIVE","balance":"1000"},
                   {"id":"a2","Plan":{"name":"Pro","steps":2},"phase":3,"status":"ACTIVE","balance":2000}])";
    }
    [[nodiscard]] static QByteArray openTrades()
    {
        return R"([{"id":"t1","accountId":"a1","symbol":"EURUSD","type":"BUY","lotSize":0.1,"entryPrice":1.1,
                    "pnl":"12.5","margin":"100"}])";
    }

    void open()
    {
        window.reset();
        window = std::make_unique<MainWindow>();
        window->show();
        window->resize(1280, 800); // whatever the screen of the test
    }
    void signIn(const QString& email = QStringLiteral("trader@example.test"))
    {
        open();
        window->setUser({{QStringLiteral("email"), email}, {QStringLiteral("token"), QStringLiteral("x")}});
    }
    /// Signs in and waits until account, trades and symbols are on show.
    void signInAndSettle()
    {
        signIn();
        QTRY_VERIFY(action("New Order")->isEnabled());
        QTRY_COMPARE(http.count("GET", "/api/accounts"), 2);
        QTRY_VERIFY(http.count("GET", "/api/trades/pending") >= 1);
        QTRY_COMPARE(list("tradeList").topLevelItemCount(), 1);
        settle();
    }
    /// Waits until the window asks for nothing more: several round trips to the same server, one after
    /// the other, pass without another request. Each takes at least the turns of the loop in which the
    /// window would have sent what follows from an answer or a message already on its way.
    void settle()
    {
        constexpr int quietRoundTrips = 4;
        for (int quiet = 0; quiet < quietRoundTrips;) {
            const qsizetype before = http.requests().size();
            bool answered = false;
            m_marker.get(QStringLiteral("/marker"), &http,
                [&answered](const QJsonDocument&, const QString&) { answered = true; });
            QTRY_VERIFY(answered);
            quiet = http.requests().size() == before + 1 ? quiet + 1 : 0;
        }
    }

    [[nodiscard]] ChartArea* chartArea() const { return window->findChild<ChartArea*>(); }
    [[nodiscard]] QList<ChartWindow*> charts() const { return chartArea()->charts(); }
    [[nodiscard]] QComboBox& selector() const
    {
        return *window->findChild<QComboBox*>(QStringLiteral("accountSelector"));
    }
    [[nodiscard]] QTreeWidget& list(const char* name) const
    {
        return *window->findChild<QTreeWidget*>(QString::fromLatin1(name));
    }
    [[nodiscard]] QString summary() const
    {
        return window->findChild<QLabel*>(QStringLiteral("accountSummary"))->text();
    }
    [[nodiscard]] QAction* action(const char* text) const
    {
        for (QAction* action : window->findChildren<QAction*>()) {
            if (action->text() == QString::fromLatin1(text))
                return action;
        }
        return nullptr;
    }
    /// "Source: message" of each line of a log list, oldest first.
    [[nodiscard]] QStringList log(const char* name) const
    {
        QStringList lines;
        const QAbstractItemView* view = window->findChild<QAbstractItemView*>(QString::fromLatin1(name));
        const QAbstractItemModel* model = view->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            lines.append(model->index(row, 1).data().toString() + QStringLiteral(": ")
                + model->index(row, 2).data().toString());
        }
        return lines;
    }
    [[nodiscard]] QStringList journal() const { return log("journalList"); }
    [[nodiscard]] int journalCount(const QString& line) const { return int(journal().count(line)); }

private:
    ApiClient m_marker{TerminalSettings::instance()};
};
