#pragma once

#include <QIcon>
#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

class QJsonArray;
class QTreeWidget;
class QTreeWidgetItem;

/// The docked tree of accounts, indicators and installed scripts. A double-click or Enter says what the
/// user wants; someone else does it.
class NavigatorWidget final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(NavigatorWidget)

public:
    /// An indicator as the tree shows it.
    struct Indicator {
        QString key; ///< for indicatorActivated()
        QString name;
    };

    explicit NavigatorWidget(const QList<Indicator>& indicators, QWidget* parent = nullptr);
    ~NavigatorWidget() override = default;

public Q_SLOTS:
    /// Replaces the account entries; the active one stays marked.
    void setAccounts(const QJsonArray& accounts);
    /// Marks the account by bold type. An id not in the list marks none.
    void setActiveAccount(const QString& accountId);
    /// Replaces the script entries by these full paths, in this order.
    void setExperts(const QStringList& paths);

Q_SIGNALS:
    void accountActivated(const QString& accountId);
    void indicatorActivated(const QString& key);
    /// The script's full path.
    void expertActivated(const QString& path);

protected:
    void changeEvent(QEvent* event) override;

private:
    void buildTree(const QList<Indicator>& indicators);
    void activate(const QTreeWidgetItem* item);
    void drawIcons();

    QTreeWidget* m_tree;
    QTreeWidgetItem* m_accounts = nullptr;
    QTreeWidgetItem* m_experts = nullptr;
    QString m_activeAccountId;
    QIcon m_accountIcon; ///< kept, since accounts are read again with every trade
    bool m_drawnDark = false;
};
