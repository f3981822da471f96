#pragma once

#include "app/base/LineKind.h"
#include "app/ui/SoundPlayer.h"
#include "mainwindow/TrayIcon.h"
#include "mainwindow/account/AccountLoader.h"
#include "panes/TerminalPane.h"

#include <QObject>

/// Takes what the collaborators report to where it belongs: lines to the Journal and the Experts tab, sounds,
/// balloons, and wishes to read a list again.
class Reports final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Reports)

public:
    /// All must outlive it. Without a tray balloons are dropped.
    Reports(TerminalPane& toolbox, AccountLoader& accounts, TrayIcon* tray, QObject* parent);
    ~Reports() override = default;

    /// Listens to whichever of the reports a collaborator has signals for.
    template <typename Reporter> void follow(const Reporter& reporter);

public Q_SLOTS:
    /// A line for the Journal tab and the log file.
    void journal(const QString& source, const QString& message);
    /// A line for the Experts tab; a failure is one for the log file too.
    void expert(const QString& source, const QString& message, LineKind kind);

private:
    template <typename Reporter> void followRefreshes(const Reporter& reporter);

    TerminalPane& m_toolbox;
    AccountLoader& m_accounts;
    TrayIcon* m_tray;
};

template <typename Reporter> void Reports::follow(const Reporter& reporter)
{
    if constexpr (requires { &Reporter::journalLine; })
        connect(&reporter, &Reporter::journalLine, this, &Reports::journal);
    if constexpr (requires { &Reporter::logMessage; })
        connect(&reporter, &Reporter::logMessage, this, &Reports::journal);
    if constexpr (requires { &Reporter::expertLine; })
        connect(&reporter, &Reporter::expertLine, this, &Reports::expert);
    if constexpr (requires { &Reporter::expertLog; })
        connect(&reporter, &Reporter::expertLog, this, &Reports::expert);
    if constexpr (requires { &Reporter::soundWanted; })
        connect(&reporter, &Reporter::soundWanted, this, &play);
    if constexpr (requires { &Reporter::balloonWanted; }) {
        if (m_tray)
            connect(&reporter, &Reporter::balloonWanted, m_tray, &TrayIcon::showBalloon);
    }
    followRefreshes(reporter);
}

template <typename Reporter> void Reports::followRefreshes(const Reporter& reporter)
{
    if constexpr (requires { &Reporter::accountsRefreshWanted; })
        connect(&reporter, &Reporter::accountsRefreshWanted, &m_accounts, &AccountLoader::refreshAccounts);
    if constexpr (requires { &Reporter::tradesRefreshWanted; })
        connect(&reporter, &Reporter::tradesRefreshWanted, &m_accounts, &AccountLoader::refreshOpenTrades);
    if constexpr (requires { &Reporter::historyRefreshWanted; })
        connect(&reporter, &Reporter::historyRefreshWanted, &m_accounts, &AccountLoader::refreshHistory);
    if constexpr (requires { &Reporter::everythingRefreshWanted; })
        connect(&reporter, &Reporter::everythingRefreshWanted, &m_accounts, &AccountLoader::refreshAll);
}
