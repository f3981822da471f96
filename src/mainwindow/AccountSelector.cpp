#include "mainwindow/AccountSelector.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "mainwindow/account/AccountBook.h"
#include "net/records/AccountRecord.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QKeyEvent>
#include <QScopedValueRollback>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

bool listsAccounts(const QComboBox& list, const QJsonArray& accounts)
{
    if (list.count() != accounts.size())
        return false;
    for (int i = 0; i < list.count(); ++i) {
        if (list.itemData(i).toString() != account::id(accounts.at(i).toObject()))
            return false;
    }
    return true;
}

/// Whether a closed list takes this key for another choice.
bool choosesUnseen(const QKeyEvent& key)
{
    switch (key.key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_Home:
    case Qt::Key_End:
        return true;
    default:
        return !key.text().isEmpty() && key.text().front().isPrint();
    }
}

} // namespace

AccountSelector::AccountSelector(QComboBox& list, const AccountBook& book, QObject* parent)
    : QObject(parent)
    , m_list(list)
    , m_lines(*list.view())
    , m_book(book)
{
    m_list.installEventFilter(this);
    m_lines.installEventFilter(this);
    connect(&m_list, &QComboBox::currentIndexChanged, this, &AccountSelector::onAccountSelected);
    connect(&m_book, &AccountBook::accountsChanged, this, &AccountSelector::fill);
    connect(&m_book, &AccountBook::currentAccountChanged, this, &AccountSelector::showCurrent);
}

QString AccountSelector::lineOf(const QJsonObject& account)
{
    return u"%1  [%2]  %3"_s.arg(
        account::label(account), shownName(account::status(account)), formatMoney(account::balance(account)));
}

void AccountSelector::onAccountSelected(int index)
{
    if (!m_fillingAccounts && index >= 0)
        Q_EMIT accountChosen(m_list.itemData(index).toString());
}

bool AccountSelector::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &m_list && event->type() == QEvent::KeyPress
        && choosesUnseen(static_cast<const QKeyEvent&>(*event))) {
        m_list.showPopup();
        lookFor(static_cast<QKeyEvent*>(event)->text());
        return true;
    }
    if (watched == &m_lines && event->type() == QEvent::KeyPress)
        return goOn(static_cast<QKeyEvent*>(event)->text());
    if (watched == &m_list && event->type() == QEvent::Wheel) {
        event->ignore(); // the open list has the wheel for itself
        return true;
    }
    return QObject::eventFilter(watched, event);
}

void AccountSelector::lookFor(const QString& letter)
{
    m_letter.clear();
    if (letter.isEmpty() || !letter.front().isLetterOrNumber())
        return;
    m_letter = letter;
    // The open list's own search, which goes on with the next letters; it would begin below the current line.
    const QModelIndex current = m_lines.currentIndex();
    m_lines.keyboardSearch({}); // forgets what was typed before the list was closed
    m_lines.setCurrentIndex({});
    m_lines.keyboardSearch(letter);
    if (!m_lines.currentIndex().isValid())
        m_lines.setCurrentIndex(current);
}

bool AccountSelector::goOn(const QString& letter)
{
    if (letter.isEmpty() || letter != std::exchange(m_letter, letter))
        return false;
    // Qt stays where it is when a letter comes again soon.
    const QAbstractItemModel& model = *m_lines.model();
    const int below = (m_lines.currentIndex().row() + 1) % std::max(model.rowCount(), 1);
    const QModelIndexList found
        = model.match(model.index(below, 0), Qt::DisplayRole, letter, 1, Qt::MatchStartsWith | Qt::MatchWrap);
    if (found.isEmpty())
        return false;
    m_lines.setCurrentIndex(found.constFirst());
    return true;
}

void AccountSelector::choose(const QString& accountId)
{
    const int index = m_list.findData(accountId);
    if (index >= 0)
        m_list.setCurrentIndex(index);
}

void AccountSelector::fill()
{
    const QScopedValueRollback filling(m_fillingAccounts, true);
    const QJsonArray& accounts = m_book.accounts();
    // Lines that stand for the same accounts as before stay: the drop-down may be open.
    if (!listsAccounts(m_list, accounts)) {
        m_list.clear();
        for (const QJsonValue account : accounts)
            m_list.addItem(QString(), account::id(account.toObject()));
    }
    for (int i = 0; i < m_list.count(); ++i) {
        const QString text = lineOf(accounts.at(i).toObject());
        if (m_list.itemText(i) != text)
            m_list.setItemText(i, text);
    }
    m_list.setCurrentIndex(m_book.preferredIndex());
}

void AccountSelector::showCurrent()
{
    const QScopedValueRollback filling(m_fillingAccounts, true);
    if (m_list.currentData().toString() != m_book.currentAccountId())
        m_list.setCurrentIndex(m_list.findData(m_book.currentAccountId()));
}
