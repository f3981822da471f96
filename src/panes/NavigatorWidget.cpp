#include "panes/NavigatorWidget.h"

#include "app/base/ServerText.h"
#include "app/ui/Theme.h"
#include "net/records/AccountRecord.h"
#include "panes/KeptRows.h"
#include "panes/PaneIcons.h"
#include "panes/RowEntry.h"

#include <QEvent>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QJsonArray>
#include <QJsonObject>
#include <QTabBar>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr auto accountPrefix = "account:"_L1;
constexpr auto indicatorPrefix = "indicator:"_L1;
constexpr auto expertPrefix = "expert:"_L1;

QString keyOf(const QTreeWidgetItem* item)
{
    return item->data(0, Qt::UserRole).toString();
}

QTreeWidgetItem* addEntry(QTreeWidgetItem* parent, const QString& text, const QString& key = {})
{
    auto* item = new QTreeWidgetItem(parent, {text});
    if (!key.isEmpty())
        item->setData(0, Qt::UserRole, key);
    return item;
}

/// Leads back to the current entry of a folder once its entries have been made anew, or to the one that takes
/// its place; to the folder where it is empty.
class CurrentKeeper final {
    Q_DISABLE_COPY_MOVE(CurrentKeeper)

public:
    explicit CurrentKeeper(QTreeWidgetItem& folder)
        : m_folder(folder)
    {
        QTreeWidgetItem* current = folder.treeWidget()->currentItem();
        if (!current || current->parent() != &folder)
            return;
        const QStringList keys = entryKeys();
        const int place = folder.indexOfChild(current);
        m_wanted = heirsOf(keys, place);
        m_wanted.prepend(keys.at(place));
    }
    ~CurrentKeeper()
    {
        if (m_wanted.isEmpty())
            return;
        const QStringList keys = entryKeys();
        const auto found = std::find_if(
            m_wanted.begin(), m_wanted.end(), [&keys](const QString& key) { return keys.contains(key); });
        QTreeWidgetItem* next
            = found == m_wanted.end() ? &m_folder : m_folder.child(int(keys.lastIndexOf(*found)));
        m_folder.treeWidget()->setCurrentItem(next, 0, QItemSelectionModel::ClearAndSelect);
    }

private:
    [[nodiscard]] QStringList entryKeys() const
    {
        QStringList keys;
        for (int i = 0; i < m_folder.childCount(); ++i)
            keys.append(keyOf(m_folder.child(i)));
        return keys;
    }

    QTreeWidgetItem& m_folder;
    QStringList m_wanted; ///< the current entry, and its heirs in their order; none where it is elsewhere
};

/// Bold for the eye, in words for those who do not see it.
void markActive(QTreeWidgetItem* item, bool active)
{
    QFont font = item->font(0);
    font.setWeight(active ? QFont::Bold : QFont::Normal);
    item->setFont(0, font);
    item->setData(
        0, Qt::AccessibleDescriptionRole, active ? NavigatorWidget::tr("Active account") : QString());
}

} // namespace

NavigatorWidget::NavigatorWidget(const QList<Indicator>& indicators, QWidget* parent)
    : QWidget(parent)
    , m_tree(new QTreeWidget(this))
{
    buildTree(indicators);

    auto* tabs = new QTabBar(this);
    tabs->setShape(QTabBar::RoundedSouth);
    tabs->setExpanding(false);
    //: all entries, as opposed to the favourites
    tabs->addTab(tr("Common"));
    tabs->addTab(tr("Favorites"));

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_tree, 1);
    layout->addWidget(tabs, 0);

    connect(m_tree, &QTreeWidget::itemDoubleClicked, this, &NavigatorWidget::activate);
    connect(new RowEntry(*m_tree), &RowEntry::entered, this, &NavigatorWidget::activate);
}

void NavigatorWidget::buildTree(const QList<Indicator>& indicators)
{
    m_tree->setObjectName("navigatorTree"_L1);
    m_tree->setAccessibleName(tr("Navigator"));
    m_tree->setColumnCount(1);
    m_tree->setHeaderHidden(true);
    m_tree->setIndentation(14);

    auto* root = new QTreeWidgetItem(m_tree, {tr("Tavoran Terminal")});
    root->setIcon(0, appIcon());
    m_accounts = addEntry(root, tr("Accounts"));
    QTreeWidgetItem* indicatorFolder = addEntry(root, tr("Indicators"));
    for (const Indicator& indicator : indicators)
        addEntry(indicatorFolder, indicator.name, indicatorPrefix + indicator.key);
    m_experts = addEntry(root, tr("Expert Advisors"));
    setExperts({});

    for (QTreeWidgetItem* item : {root, m_accounts, indicatorFolder, m_experts})
        item->setExpanded(true);
    drawIcons();
}

void NavigatorWidget::activate(const QTreeWidgetItem* item)
{
    const QString key = keyOf(item);
    if (key.startsWith(accountPrefix))
        Q_EMIT accountActivated(key.mid(accountPrefix.size()));
    else if (key.startsWith(indicatorPrefix))
        Q_EMIT indicatorActivated(key.mid(indicatorPrefix.size()));
    else if (key.startsWith(expertPrefix))
        Q_EMIT expertActivated(key.mid(expertPrefix.size()));
}

void NavigatorWidget::setAccounts(const QJsonArray& accounts)
{
    const CurrentKeeper current(*m_accounts);
    qDeleteAll(m_accounts->takeChildren());
    for (const auto& value : accounts) {
        const QJsonObject account = value.toObject();
        const QString balance = QString::number(account::balance(account), 'f', 0);
        const QString id = account::id(account);
        //: %1 the account, %2 its balance
        QTreeWidgetItem* item
            = addEntry(m_accounts, tr("%1  (%2)").arg(account::label(account), balance), accountPrefix + id);
        item->setIcon(0, m_accountIcon);
        if (id == m_activeAccountId)
            markActive(item, true);
    }
    m_accounts->setExpanded(true);
}

void NavigatorWidget::setActiveAccount(const QString& accountId)
{
    m_activeAccountId = accountId;
    const QString key = accountPrefix + accountId;
    for (int i = 0; i < m_accounts->childCount(); ++i) {
        QTreeWidgetItem* item = m_accounts->child(i);
        markActive(item, keyOf(item) == key);
    }
}

void NavigatorWidget::setExperts(const QStringList& paths)
{
    if (!m_experts)
        return;
    const CurrentKeeper current(*m_experts);
    qDeleteAll(m_experts->takeChildren());
    if (paths.isEmpty())
        addEntry(m_experts, tr("(none installed)"))->setDisabled(true);
    const QIcon icon = expertIcon(themeMutedColor());
    for (const QString& path : paths) {
        QTreeWidgetItem* item
            = addEntry(m_experts, oneLine(QFileInfo(path).completeBaseName()), expertPrefix + path);
        item->setIcon(0, icon);
        item->setToolTip(0, tr("Double-click to attach to the active chart"));
    }
    m_experts->setExpanded(true);
}

void NavigatorWidget::changeEvent(QEvent* event)
{
    const bool restyled = event->type() == QEvent::StyleChange || event->type() == QEvent::PaletteChange;
    if (restyled && m_drawnDark != isDarkTheme())
        drawIcons();
    QWidget::changeEvent(event);
}

void NavigatorWidget::drawIcons()
{
    m_drawnDark = isDarkTheme();
    const QColor stroke = themeMutedColor();
    const QIcon folder = folderIcon(stroke);
    const auto setChildIcons = [](QTreeWidgetItem* parent, const QIcon& icon) {
        for (int i = 0; i < parent->childCount(); ++i) {
            if (!parent->child(i)->isDisabled())
                parent->child(i)->setIcon(0, icon);
        }
    };
    QTreeWidgetItem* indicators = m_tree->topLevelItem(0)->child(1);
    m_accounts->setIcon(0, folder);
    indicators->setIcon(0, folder);
    m_experts->setIcon(0, expertIcon(stroke));
    m_accountIcon = accountIcon(stroke);
    setChildIcons(m_accounts, m_accountIcon);
    setChildIcons(indicators, indicatorIcon(stroke));
    setChildIcons(m_experts, expertIcon(stroke));
}
