#include "mainwindow/AccountSelector.h"
#include "mainwindow/account/AccountBook.h"
#include "support/Hands.h"
#include "support/Records.h"
#include "support/TestMain.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QSignalSpy>

using namespace Qt::StringLiterals;

namespace {

const QJsonArray two{records::account("w").wallet().balance(0), records::account("a")};

struct Selector {
    /// Shows accounts, three of which the second is current where none are named, and gives the list the
    /// keyboard.
    void showFocused(const QJsonArray& accounts = {records::account("w").wallet().balance(0),
                         records::account("a"), records::account("p").plan("Pro", 2)})
    {
        book.setAccounts(accounts);
        list.show();
        list.activateWindow();
        list.setFocus();
        QVERIFY(hands::arriveAt(&list));
    }

    AccountBook book;
    QComboBox list;
    AccountSelector selector{list, book};
    QSignalSpy chosen{&selector, &AccountSelector::accountChosen};
};

} // namespace

class tst_AccountSelector final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aLineNamesLabelStatusAndBalance_data()
    {
        QTest::addColumn<QJsonObject>("account");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, const QJsonObject& account, const QString& text) {
            QTest::newRow(name) << account << text;
        };
        using records::account;
        row("wallet", account("w").wallet().balance("1234567.891"), u"Real  [ACTIVE]  1,234,567.89"_s);
        row("demo", account("a").balance(100000), u"Demo  [ACTIVE]  100,000.00"_s);
        row("phase beyond the steps", account("a").plan("Pro", 2, 3).balance(1),
            u"Pro — Challenge 2/2  [ACTIVE]  1.00"_s);
        row("one step", account("a").plan("Pro", 1).status("FAILED").balance(0),
            u"Pro — Challenge  [FAILED]  0.00"_s);
        row("funded", account("a").plan("Pro", 2).funded().balance(-5.005),
            u"Pro — Funded  [ACTIVE]  -5.00"_s);
        row("nothing known", {}, u"Account — Challenge  []  0.00"_s);
        row("percent signs", account("a").plan("%2 %1", 1).status("%3").balance(7),
            u"%2 %1 — Challenge  [%3]  7.00"_s);
    }
    void aLineNamesLabelStatusAndBalance()
    {
        QFETCH(QJsonObject, account);
        QFETCH(QString, text);
        QCOMPARE(AccountSelector::lineOf(account), text);
    }

    void statusWithALineBreakStaysOneLine()
    {
        QCOMPARE(AccountSelector::lineOf(records::account("w").wallet().status("A\nB").balance(1)),
            u"Real  [A B]  1.00"_s);
    }

    void a_new_list_shows_the_preferred_account_and_chooses_none()
    {
        Selector s;
        s.book.setAccounts(two);
        QCOMPARE(s.list.count(), 2);
        QCOMPARE(s.list.currentData().toString(), u"a"_s);
        QCOMPARE(s.list.itemText(0), u"Real  [ACTIVE]  0.00"_s);
        s.book.setAccounts({});
        QCOMPARE(s.list.count(), 0);
        QCOMPARE(s.chosen.count(), 0);
    }

    void a_trader_chooses_by_line_and_by_id()
    {
        Selector s;
        s.book.setAccounts(two);
        s.list.setCurrentIndex(0);
        QCOMPARE(s.chosen.takeFirst(), QVariantList{u"w"_s});
        s.selector.choose(u"a"_s);
        QCOMPARE(s.chosen.takeFirst(), QVariantList{u"a"_s});
        s.selector.choose(u"a"_s);
        s.selector.choose(u"unknown"_s);
        s.selector.onAccountSelected(-1);
        QCOMPARE(s.chosen.count(), 0);
        QCOMPARE(s.list.currentIndex(), 1);
        // Said explicitly, it counts for the line that is current too.
        s.selector.onAccountSelected(1);
        QCOMPARE(s.chosen.takeFirst(), QVariantList{u"a"_s});
    }

    void a_stray_key_opens_the_list_and_chooses_none_data()
    {
        QTest::addColumn<Qt::Key>("key");
        for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Down, Qt::Key_Home, Qt::Key_End, Qt::Key_PageUp,
                 Qt::Key_PageDown, Qt::Key_R, Qt::Key_Space})
            QTest::addRow("%s", QMetaEnum::fromType<Qt::Key>().valueToKey(key)) << key;
    }
    void a_stray_key_opens_the_list_and_chooses_none()
    {
        QFETCH(const Qt::Key, key);
        Selector s;
        s.showFocused();
        hands::press(key);
        QCOMPARE(s.chosen.count(), 0);
        QVERIFY(s.list.view()->isVisible());
        hands::press(Qt::Key_Down);
        hands::press(Qt::Key_Escape);
        QTRY_VERIFY(!s.list.view()->isVisible());
        QCOMPARE(s.chosen.count(), 0);
        QCOMPARE(s.list.currentData().toString(), u"a"_s);
    }

    void a_letter_opens_the_list_at_the_first_line_that_begins_with_it_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("id");
        QTest::newRow("another one") << u"r"_s << u"w"_s;
        QTest::newRow("not the next one") << u"d"_s << u"a"_s;
        QTest::newRow("a large letter") << u"D"_s << u"a"_s;
        QTest::newRow("a second time") << u"dd"_s << u"b"_s;
        QTest::newRow("once around") << u"ddd"_s << u"a"_s;
        QTest::newRow("several letters") << u"pr"_s << u"q"_s;
        QTest::newRow("none begins with it") << u"x"_s << u"b"_s;
    }
    void a_letter_opens_the_list_at_the_first_line_that_begins_with_it()
    {
        QFETCH(const QString, typed);
        QFETCH(const QString, id);
        Selector s;
        s.book.selectAccount(u"b"_s);
        s.showFocused({records::account("w").wallet().balance(0), records::account("a"),
            records::account("p").plan("Pearl", 2), records::account("q").plan("Pro", 2),
            records::account("b")});
        for (const QChar letter : typed) // the first one moves the keyboard
            hands::type(letter);
        QVERIFY(s.list.view()->isVisible());
        QCOMPARE(s.list.view()->currentIndex().data(Qt::UserRole).toString(), id);
        QCOMPARE(s.list.currentData().toString(), u"b"_s);
        QCOMPARE(s.chosen.count(), 0);
        hands::press(Qt::Key_Return);
        QTRY_VERIFY(!s.list.view()->isVisible());
        QCOMPARE(s.list.currentData().toString(), id);
        QCOMPARE(s.chosen.count(), id == u"b"_s ? 0 : 1);
    }

    void a_letter_begins_anew_each_time_the_list_is_opened()
    {
        Selector s;
        s.book.selectAccount(u"c"_s);
        s.showFocused({records::account("a"), records::account("b"), records::account("c")});
        for (int time = 0; time < 2; ++time) {
            hands::type(u"d"_s);
            QCOMPARE(s.list.view()->currentIndex().row(), 0);
            hands::press(Qt::Key_Escape);
            QTRY_VERIFY(!s.list.view()->isVisible());
            QTRY_VERIFY(s.list.hasFocus());
        }
        QCOMPARE(s.chosen.count(), 0);
    }

    void the_wheel_over_the_closed_list_chooses_none()
    {
        Selector s;
        s.showFocused();
        hands::turnWheel(s.list, -120);
        QCOMPARE(s.chosen.count(), 0);
        QCOMPARE(s.list.currentData().toString(), u"a"_s);
    }

    void enter_chooses_in_the_open_list()
    {
        Selector s;
        s.showFocused();
        hands::press(Qt::Key_Down);
        QVERIFY(s.list.view()->isVisible());
        hands::press(Qt::Key_Down);
        hands::press(Qt::Key_Return);
        QCOMPARE(s.chosen, QList<QVariantList>{{u"p"_s}});
        QTRY_VERIFY(!s.list.view()->isVisible());
    }

    void keys_that_choose_nothing_go_on()
    {
        Selector s;
        s.showFocused();
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_F6})
            hands::press(key);
        QVERIFY(!s.list.view()->isVisible());
        QCOMPARE(s.chosen.count(), 0);
    }

    void the_account_that_has_become_current_is_shown()
    {
        Selector s;
        s.book.setAccounts(two);
        s.book.selectAccount(u"w"_s);
        QCOMPARE(s.list.currentIndex(), 0);
        QCOMPARE(s.chosen.count(), 0);
    }

    void of_equal_ids_the_last_line_stays()
    {
        Selector s;
        s.book.selectAccount(u"a"_s);
        s.book.setAccounts({records::account("a").status("CLOSED"), records::account("a").status("CLOSED"),
            records::account("b")});
        QCOMPARE(s.list.currentIndex(), 1);
        s.book.selectAccount(u"a"_s);
        QCOMPARE(s.list.currentIndex(), 1);
    }

    void lines_of_the_same_accounts_stay()
    {
        Selector s;
        s.book.setAccounts(two);
        QSignalSpy removed(s.list.model(), &QAbstractItemModel::rowsRemoved);
        QSignalSpy reset(s.list.model(), &QAbstractItemModel::modelReset);
        s.book.setAccounts({records::account("w").wallet().balance(5), records::account("a")});
        QCOMPARE(s.list.itemText(0), u"Real  [ACTIVE]  5.00"_s);
        QCOMPARE(removed.count() + reset.count(), 0);
        QCOMPARE(s.list.currentData().toString(), u"a"_s);
    }
};

TAVORAN_TEST(tst_AccountSelector)
#include "tst_AccountSelector.moc"
