#pragma once

#include "mainwindow/ChartArea.h"
#include "mainwindow/MainWindow.h"
#include "support/Records.h"
#include "support/ServedClient.h"
#include "support/StubFeedServer.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QLabel>
#include <QTreeWidget>
#include <QtTest>

/// A whole main window against scripted servers on one loopback port: two accounts, two symbols.
struct MainWindowFixture : fixtures::ServedClient {
    StubFeedServer feed{server};
    std::unique_ptr<MainWindow> window;

    MainWindowFixture()
    {
        TerminalSettings& settings = TerminalSettings::instance();
        settings.setToken(QStringLiteral("secret-token-123"));
        settings.setWindowLayout({}, {});
        settings.setRestoringLayout(false);
        settings.setChartsLayout({});
        feed.setGreeting(records::hello({records::symbol("EURUSD").rank(1).described("Euro"),
                                            records::symbol("USDJPY").rank(2).digits(3).described("Yen")},
            records::prices({{"EURUSD", 1.1, 1.2}, {"USDJPY", "150.5", "150.6"}})));
        server.on("GET", "/api/accounts", StubAnswer::list(accounts()));
        server.on("GET", "/api/trades/open", StubAnswer::list({}));
        server.on("GET", "/api/trades/open?accountId=a1", StubAnswer::list({openTrade()}));
        server.on("GET", "/api/trades/pending", StubAnswer::list({}));
        server.on("GET", "/api/trades/history", StubAnswer::list({}));
        server.on("GET", "/api/candles", StubAnswer::list({}));
        server.on("GET", "/api/drawings", StubAnswer::list({}));
        server.on("GET", "/api/news/upcoming", StubAnswer::json(records::news({})));
    }

    [[nodiscard]] static QJsonArray accounts(double balanceOfTheLast = 2000)
    {
        return {records::account("w").wallet().balance("5"), records::account("a1").balance("1000"),
            records::account("a2").plan("Pro", 2, 3).balance(balanceOfTheLast)};
    }
    [[nodiscard]] static records::Trade openTrade()
    {
        return records::position("t1").buy(0.1).at(1.1).profit("12.5").margin("100");
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
        QTRY_COMPARE(server.count("GET", "/api/accounts"), 2);
        QTRY_VERIFY(server.count("GET", "/api/trades/pending") >= 1);
        QTRY_COMPARE(list("tradeList").topLevelItemCount(), 1);
        settle();
    }

    /// Waits until all lists of the first account have been asked for since the requests were last cleared.
    void awaitAllLists()
    {
        QTRY_VERIFY(server.count("GET", "/api/accounts") >= 1);
        QTRY_VERIFY(server.count("GET", "/api/trades/open?accountId=a1") >= 1);
        QTRY_VERIFY(server.count("GET", "/api/trades/history?accountId=a1") >= 1);
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
};
