#pragma once

#include <QObject>
#include <QString>

class AccountBook;
class QAbstractItemView;
class QComboBox;

/// The combo box in which the trader chooses an account: shows the book's list and its current account, and
/// tells of another choice.
class AccountSelector final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(AccountSelector)

public:
    /// Both must outlive it.
    AccountSelector(QComboBox& list, const AccountBook& book, QObject* parent = nullptr);
    ~AccountSelector() override = default;

    /// One line of the list: label, status, balance. Line breaks in server text become blanks.
    [[nodiscard]] static QString lineOf(const QJsonObject& account);

public Q_SLOTS:
    /// Tells of the account in this line; nothing while the list is being filled, and for a negative index.
    void onAccountSelected(int index);
    /// Chooses an account by its id; one that is not listed, or is chosen already, changes nothing.
    void choose(const QString& accountId);

Q_SIGNALS:
    void accountChosen(const QString& accountId);

protected:
    /// Keys that would choose another account at once open the list instead, a letter at the first line that
    /// begins with it, and the wheel chooses none: a stray one must not send the next order elsewhere.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fill();
    void showCurrent();
    /// To the first line of the list, just opened, that begins with this; nothing for what is no letter or
    /// digit.
    void lookFor(const QString& letter);
    /// To the next such line when the letter is the last one again; false where it is not.
    [[nodiscard]] bool goOn(const QString& letter);

    QComboBox& m_list;
    QAbstractItemView& m_lines; ///< of the open list
    const AccountBook& m_book;
    QString m_letter; ///< typed last in the open list
    bool m_fillingAccounts = false;
};
