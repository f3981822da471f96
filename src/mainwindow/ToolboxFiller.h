#pragma once

#include <QObject>

class AccountBook;
class QJsonArray;
class TerminalPane;

/// Shows the current account in the Toolbox: its trades with live prices and profits, and the line below
/// them.
class ToolboxFiller final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ToolboxFiller)

public:
    /// Both must outlive it.
    ToolboxFiller(TerminalPane& toolbox, const AccountBook& book, QObject* parent = nullptr);
    ~ToolboxFiller() override = default;

public Q_SLOTS:
    void showHistory(const QJsonArray& rows);

private:
    void showTrades();
    void showAge();
    void showSummary();

    TerminalPane& m_toolbox;
    const AccountBook& m_book;
};
