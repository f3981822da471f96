#include "panes/KeptRows.h"
#include "panes/LogList.h"
#include "panes/RowEntry.h"
#include "panes/RowKeys.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QClipboard>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QTreeWidget>

using namespace Qt::StringLiterals;

namespace {

struct Sheet {
    QTreeWidget list;

    Sheet()
    {
        list.setHeaderLabels({u"Time"_s, u"Name"_s, u"Note"_s});
        list.setRootIsDecorated(false);
        add({u"10:00"_s, u"Gold"_s, u"first"_s});
        add({u"11:00"_s, u"Oil"_s, u"a\tb\nc"_s});
        add({u"12:00"_s, u"Euro"_s, u"third"_s});
        list.show();
        list.activateWindow();
        list.setFocus();
        QGuiApplication::clipboard()->setText(u"before"_s);
    }
    void add(const QStringList& cells) { list.addTopLevelItem(new QTreeWidgetItem(cells)); }
    void makeCurrent(int row) { list.setCurrentItem(list.topLevelItem(row)); }
    [[nodiscard]] int currentRow() const { return list.currentIndex().row(); }
    [[nodiscard]] QList<int> selectedRows() const
    {
        QList<int> rows;
        for (int row = 0; row < list.topLevelItemCount(); ++row) {
            if (list.topLevelItem(row)->isSelected())
                rows.append(row);
        }
        return rows;
    }
};

void pressCtrl(Qt::Key key)
{
    QTest::keyClick(QApplication::focusWidget(), key, Qt::ControlModifier);
}

/// A log lays out its new rows a moment later.
bool isLaidOut(const LogList& log)
{
    return log.visualItemRect(log.topLevelItem(log.topLevelItemCount() - 1)).isValid();
}

QString copied()
{
    return QGuiApplication::clipboard()->text();
}

} // namespace

class tst_RowKeys final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void all_rows_are_copied_with_their_headers()
    {
        Sheet sheet;
        new RowKeys(sheet.list);
        QVERIFY(hands::arriveAt(&sheet.list));
        pressCtrl(Qt::Key_A);
        pressCtrl(Qt::Key_C);
        QCOMPARE(
            copied(), u"Time\tName\tNote\n10:00\tGold\tfirst\n11:00\tOil\ta b c\n12:00\tEuro\tthird\n"_s);
    }

    void the_selected_rows_are_copied_from_top_to_bottom()
    {
        Sheet sheet;
        new RowKeys(sheet.list);
        QVERIFY(hands::arriveAt(&sheet.list));
        const auto click = [&sheet](int row, Qt::KeyboardModifiers modifiers) {
            QTest::mouseClick(sheet.list.viewport(), Qt::LeftButton, modifiers,
                sheet.list.visualItemRect(sheet.list.topLevelItem(row)).center());
        };
        click(2, Qt::NoModifier);
        click(0, Qt::ControlModifier);
        QCOMPARE(sheet.selectedRows(), QList<int>({0, 2}));
        pressCtrl(Qt::Key_C);
        QCOMPARE(copied(), u"Time\tName\tNote\n10:00\tGold\tfirst\n12:00\tEuro\tthird\n"_s);
        click(0, Qt::NoModifier);
        QTest::keyClick(&sheet.list, Qt::Key_Down, Qt::ShiftModifier);
        QCOMPARE(sheet.selectedRows(), QList<int>({0, 1}));
    }

    void columns_are_copied_as_they_are_on_show()
    {
        Sheet sheet;
        new RowKeys(sheet.list);
        QVERIFY(hands::arriveAt(&sheet.list));
        sheet.list.header()->moveSection(2, 0);
        sheet.list.hideColumn(0);
        sheet.makeCurrent(0);
        pressCtrl(Qt::Key_C);
        QCOMPARE(copied(), u"Note\tName\nfirst\tGold\n"_s);
    }

    void without_a_selection_nothing_is_copied()
    {
        Sheet sheet;
        new RowKeys(sheet.list);
        QVERIFY(hands::arriveAt(&sheet.list));
        pressCtrl(Qt::Key_C);
        QCOMPARE(copied(), u"before"_s);
    }

    void letters_find_a_row_where_the_first_column_is_a_time()
    {
        Sheet sheet;
        new RowKeys(sheet.list, 1);
        QVERIFY(hands::arriveAt(&sheet.list));
        sheet.makeCurrent(0);
        hands::type(u"e"_s);
        QCOMPARE(sheet.currentRow(), 2);
        QCOMPARE(sheet.selectedRows(), QList<int>{2});
    }

    void a_long_log_is_copied_at_once()
    {
        constexpr int rows = 10'000;
        LogList log(LogList::Clock::Milliseconds);
        log.resize(600, 200);
        log.show();
        log.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&log));
        for (int row = 0; row < rows; ++row)
            log.append(u"Trade"_s, u"Line %1"_s.arg(row));
        log.setFocus();
        QTRY_VERIFY(isLaidOut(log));
        QElapsedTimer time;
        time.start();
        pressCtrl(Qt::Key_A);
        pressCtrl(Qt::Key_C);
        constexpr int patienceMs = 2000; // it takes some 50 ms on an idle machine
        QVERIFY2(time.elapsed() < patienceMs, qPrintable(QString::number(time.elapsed())));
        const QStringList lines = copied().split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), rows + 1);
        QCOMPARE(lines.constFirst(), u"Time\tSource\tMessage"_s);
        QVERIFY(lines.constLast().endsWith(u"\tTrade\tLine 9999"_s));
    }

    void letters_find_the_source_of_a_line()
    {
        LogList log(LogList::Clock::Seconds);
        log.show();
        log.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&log));
        for (const auto& source : {u"Trade"_s, u"Network"_s, u"Chart"_s})
            log.append(source, u"message"_s);
        log.setFocus();
        QTRY_VERIFY(isLaidOut(log));
        hands::type(u"c"_s);
        QCOMPARE(log.currentIndex().row(), 2);
    }

    void enter_is_told_once_for_each_press_and_for_the_current_row_only()
    {
        Sheet sheet;
        new RowKeys(sheet.list);
        const RowEntry entry(sheet.list);
        QSignalSpy entered(&entry, &RowEntry::entered);
        QVERIFY(hands::arriveAt(&sheet.list));
        pressCtrl(Qt::Key_A);
        sheet.list.selectionModel()->setCurrentIndex(
            sheet.list.model()->index(1, 0), QItemSelectionModel::NoUpdate);
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
            hands::press(key);
            hands::hold(key);
            hands::hold(key);
            QCOMPARE(entered.size(), 1);
            QCOMPARE(entered.takeFirst().constFirst().value<const QTreeWidgetItem*>(),
                static_cast<const QTreeWidgetItem*>(sheet.list.topLevelItem(1)));
        }
        sheet.list.clear();
        hands::press(Qt::Key_Return);
        QCOMPARE(entered.size(), 0);
    }

    void enter_with_another_key_held_is_no_entry_data()
    {
        QTest::addColumn<int>("modifiers");
        QTest::newRow("Ctrl") << int(Qt::ControlModifier);
        QTest::newRow("Alt") << int(Qt::AltModifier);
        QTest::newRow("Shift") << int(Qt::ShiftModifier);
        QTest::newRow("Ctrl on the keypad") << int(Qt::ControlModifier | Qt::KeypadModifier);
    }
    void enter_with_another_key_held_is_no_entry()
    {
        QFETCH(const int, modifiers);
        Sheet sheet;
        const RowEntry entry(sheet.list);
        QSignalSpy entered(&entry, &RowEntry::entered);
        QVERIFY(hands::arriveAt(&sheet.list));
        sheet.makeCurrent(1);
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
            QTest::keyClick(&sheet.list, key, Qt::KeyboardModifiers(modifiers));
        QCOMPARE(entered.size(), 0);
        QTest::keyClick(&sheet.list, Qt::Key_Enter, Qt::KeypadModifier);
        QCOMPARE(entered.size(), 1);
    }

    void rows_are_found_again_by_their_keys()
    {
        Sheet sheet;
        new RowKeys(sheet.list);
        const auto name = [&sheet](int row) { return sheet.list.topLevelItem(row)->text(1); };
        sheet.list.selectAll();
        sheet.list.topLevelItem(0)->setSelected(false);
        sheet.list.selectionModel()->setCurrentIndex(
            sheet.list.model()->index(0, 0), QItemSelectionModel::NoUpdate);
        const KeptRows kept = KeptRows::of(sheet.list, name);
        sheet.list.clear();
        sheet.add({u"9:00"_s, u"New"_s});
        sheet.add({u"12:00"_s, u"Euro"_s});
        sheet.add({u"10:00"_s, u"Gold"_s});
        kept.restore(sheet.list, name);
        QCOMPARE(sheet.currentRow(), 2);
        QCOMPARE(sheet.selectedRows(), QList<int>{1});
    }

    void the_place_of_a_row_that_goes_is_taken_data()
    {
        QTest::addColumn<QString>("before");
        QTest::addColumn<int>("current");
        QTest::addColumn<QString>("after");
        QTest::addColumn<int>("expected");
        QTest::newRow("by the next one") << u"abcd"_s << 1 << u"acd"_s << 1;
        QTest::newRow("by the next one that stays") << u"abcd"_s << 1 << u"ad"_s << 1;
        QTest::newRow("by the next one, behind a new one") << u"abcd"_s << 1 << u"xyacd"_s << 3;
        QTest::newRow("by the last one") << u"abcd"_s << 3 << u"abc"_s << 2;
        QTest::newRow("by the last one that stays") << u"abcd"_s << 2 << u"a"_s << 0;
        QTest::newRow("by none of other rows") << u"abcd"_s << 1 << u"wxyz"_s << -1;
        QTest::newRow("by nothing in an empty list") << u"a"_s << 0 << u""_s << -1;
        QTest::newRow("by nobody while it stays") << u"abcd"_s << 1 << u"dcb"_s << 2;
    }
    void the_place_of_a_row_that_goes_is_taken()
    {
        QFETCH(const QString, before);
        QFETCH(const int, current);
        QFETCH(const QString, after);
        QFETCH(const int, expected);
        Sheet sheet;
        new RowKeys(sheet.list);
        const auto name = [&sheet](int row) { return sheet.list.topLevelItem(row)->text(1); };
        const auto fill = [&sheet](const QString& names) {
            sheet.list.clear();
            for (const QChar letter : names)
                sheet.add({u"10:00"_s, QString(letter)});
        };
        fill(before);
        sheet.makeCurrent(current);
        const KeptRows kept = KeptRows::of(sheet.list, name);
        fill(after);
        kept.restore(sheet.list, name);
        QCOMPARE(sheet.currentRow(), expected);
        QCOMPARE(sheet.selectedRows(), expected < 0 ? QList<int>() : QList<int>{expected});
    }

    void the_heir_of_a_row_is_selected_like_it_where_others_are()
    {
        for (const bool selected : {true, false}) {
            Sheet sheet;
            new RowKeys(sheet.list);
            const auto name = [&sheet](int row) { return sheet.list.topLevelItem(row)->text(1); };
            sheet.list.topLevelItem(0)->setSelected(true);
            sheet.list.topLevelItem(1)->setSelected(selected);
            sheet.list.selectionModel()->setCurrentIndex(
                sheet.list.model()->index(1, 0), QItemSelectionModel::NoUpdate);
            const KeptRows kept = KeptRows::of(sheet.list, name);
            sheet.list.clear();
            sheet.add({u"10:00"_s, u"Gold"_s});
            sheet.add({u"12:00"_s, u"Euro"_s});
            kept.restore(sheet.list, name);
            QCOMPARE(sheet.currentRow(), 1);
            QCOMPARE(sheet.selectedRows(), selected ? QList<int>({0, 1}) : QList<int>{0});
        }
    }
};

TAVORAN_TEST(tst_RowKeys)
#include "tst_RowKeys.moc"
