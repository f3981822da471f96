#include "MainWindowFixture.h"
#include "app/base/TerminalSettings.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

#include <QHeaderView>
#include <QScreen>
#include <QTabWidget>

using namespace Qt::StringLiterals;

namespace {

QTreeView& list(const MainWindowFixture& f, const QString& name)
{
    return *f.window->findChild<QTreeView*>(name);
}

QTabWidget& toolbox(const MainWindowFixture& f)
{
    return *f.window->findChild<QTabWidget*>();
}

QWidget* popup(const MainWindowFixture& f)
{
    const auto* view = f.window->findChild<QTreeView*>(u"popupPriceList"_s);
    return view ? view->parentWidget() : nullptr;
}

QString stored()
{
    return TerminalSettings::instance().panesLayout();
}

/// What the settings hold at the next start.
void store(const QString& text)
{
    TerminalSettings::instance().setPanesLayout(text);
}

} // namespace

class tst_PaneKeeper final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { store({}); }

    void column_widths_of_every_list_come_back_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("column");
        QTest::newRow("Market Watch") << u"marketWatchSymbols"_s << 1;
        QTest::newRow("Details") << u"marketWatchDetails"_s << 0;
        QTest::newRow("Trade") << u"tradeList"_s << 2;
        QTest::newRow("History") << u"historyList"_s << 8;
        QTest::newRow("Experts") << u"expertsList"_s << 1;
        QTest::newRow("Journal") << u"journalList"_s << 0;
        QTest::newRow("Calendar") << u"newsList"_s << 2;
        QTest::newRow("Alerts") << u"alertsList"_s << 1;
    }
    void column_widths_of_every_list_come_back()
    {
        QFETCH(const QString, name);
        QFETCH(const int, column);
        MainWindowFixture f;
        f.open();
        QHeaderView& header = *list(f, name).header();
        const int before = header.sectionSize(column);
        const int neighbour = header.sectionSize(column == 0 ? 1 : 0);
        header.resizeSection(column, before + 37);
        f.window->close();
        f.open();
        QCOMPARE(list(f, name).header()->sectionSize(column), before + 37);
        if (name != u"marketWatchDetails"_s) // its other column takes the rest
            QCOMPARE(list(f, name).header()->sectionSize(column == 0 ? 1 : 0), neighbour);
    }

    void only_columns_of_another_width_than_usual_are_stored()
    {
        MainWindowFixture f;
        f.open();
        const int usual = list(f, u"tradeList"_s).header()->sectionSize(2);
        const auto storedColumns = [] { return fixtures::parse(stored().toUtf8())["columns"_L1].toObject(); };
        f.window->close();
        QCOMPARE(storedColumns(), QJsonObject());
        f.open();
        list(f, u"tradeList"_s).header()->resizeSection(2, usual + 37);
        f.window->close();
        for (int start = 0; start < 2; ++start) { // a start later it is still another than usual
            QCOMPARE(storedColumns().keys(), QStringList{u"tradeList"_s});
            const QJsonArray widths = storedColumns()["tradeList"_L1].toObject()["widths"_L1].toArray();
            QCOMPARE(widths, (QJsonArray{0, 0, usual + 37}));
            f.open();
            f.window->close();
        }
        f.open();
        list(f, u"tradeList"_s).header()->resizeSection(2, usual);
        f.window->close();
        QCOMPARE(storedColumns(), QJsonObject());
    }

    void the_tab_of_the_toolbox_comes_back()
    {
        MainWindowFixture f;
        f.open();
        QCOMPARE(toolbox(f).currentIndex(), 0);
        for (const int tab : {4, 1}) {
            toolbox(f).setCurrentIndex(tab);
            f.window->close();
            f.open();
            QCOMPARE(toolbox(f).currentIndex(), tab);
        }
    }

    void the_popup_prices_come_back_where_they_were()
    {
        MainWindowFixture f;
        f.open();
        f.window->togglePopupPrices();
        const QPoint corner = f.window->screen()->availableGeometry().topLeft() + QPoint(120, 90);
        popup(f)->setGeometry(QRect(corner, QSize(300, 260)));
        f.settle();
        const QRect place = popup(f)->geometry();
        f.window->close();
        f.open();
        QVERIFY(!popup(f)); // remembered is its place, not that it was open
        f.window->close();  // a session without it forgets nothing
        f.open();
        f.window->togglePopupPrices();
        f.settle();
        QCOMPARE(popup(f)->geometry(), place);
    }

    void popup_prices_ask_for_their_place_when_they_are_opened_again()
    {
        MainWindowFixture f;
        f.open();
        f.window->togglePopupPrices();
        // As if a person had moved them: that alone is no wish of the program.
        popup(f)->setAttribute(Qt::WA_Moved, false);
        f.window->togglePopupPrices();
        QVERIFY(!popup(f)->isVisible());
        QVERIFY(popup(f)->testAttribute(Qt::WA_Moved));
    }

    void popup_prices_from_a_screen_that_has_gone_are_brought_into_sight()
    {
        MainWindowFixture f;
        f.open();
        f.window->togglePopupPrices();
        popup(f)->setGeometry(QRect(QPoint(9000, 9000), QSize(300, 260)));
        f.window->close();
        f.open();
        f.window->togglePopupPrices();
        const QRect screen = f.window->screen()->availableGeometry();
        QTRY_VERIFY(screen.contains(popup(f)->geometry().center()));
        QCOMPARE(popup(f)->size(), QSize(300, 260));
    }

    void no_width_hides_a_column()
    {
        MainWindowFixture f;
        f.open();
        const int usual = list(f, u"tradeList"_s).header()->sectionSize(1);
        f.window->close();
        QJsonObject layout = fixtures::parse(stored().toUtf8());
        QJsonObject columns = layout["columns"_L1].toObject();
        QJsonObject trades = columns["tradeList"_L1].toObject();
        trades["widths"_L1] = QJsonArray{1, 0, -50, 1e9, u"x"_s, 60};
        columns["tradeList"_L1] = trades;
        layout["columns"_L1] = columns;
        store(QString::fromUtf8(QJsonDocument(layout).toJson()));
        f.open();
        const QHeaderView& header = *list(f, u"tradeList"_s).header();
        QVERIFY(header.sectionSize(0) >= 24);
        QCOMPARE(header.sectionSize(1), usual); // it was hidden: no word about it
        QVERIFY(header.sectionSize(2) >= 24);
        QVERIFY(header.sectionSize(3) <= 2000);
        QCOMPARE(header.sectionSize(5), 60);
        for (int column = 0; column < header.count(); ++column)
            QVERIFY2(header.sectionSize(column) >= 24, qPrintable(QString::number(column)));
    }

    void widths_grow_with_the_font_of_the_lists()
    {
        MainWindowFixture f;
        f.open();
        list(f, u"tradeList"_s).header()->resizeSection(0, 100);
        f.window->close();
        QJsonObject layout = fixtures::parse(stored().toUtf8());
        QJsonObject columns = layout["columns"_L1].toObject();
        QJsonObject trades = columns["tradeList"_L1].toObject();
        const double height = trades["fontHeight"_L1].toDouble();
        QVERIFY(height > 0);
        trades["fontHeight"_L1] = height / 2; // as if the letters had been half as high
        columns["tradeList"_L1] = trades;
        layout["columns"_L1] = columns;
        store(QString::fromUtf8(QJsonDocument(layout).toJson()));
        f.open();
        QCOMPARE(list(f, u"tradeList"_s).header()->sectionSize(0), 200);
    }

    void what_cannot_be_read_changes_nothing_and_is_kept_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("no JSON") << u"{\"version\":1,\"columns\":{"_s;
        QTest::newRow("no object") << u"[1,2]"_s;
        QTest::newRow("of a later format") << u"{\"version\":2,\"tab\":\"historyList\",\"columns\":"
                                              "{\"tradeList\":{\"fontHeight\":16,\"widths\":[300]}}}"_s;
    }
    void what_cannot_be_read_changes_nothing_and_is_kept()
    {
        QFETCH(const QString, text);
        MainWindowFixture f;
        f.open();
        const int usual = list(f, u"tradeList"_s).header()->sectionSize(0);
        f.window->close();
        store(text);
        f.open();
        QCOMPARE(list(f, u"tradeList"_s).header()->sectionSize(0), usual);
        QCOMPARE(toolbox(f).currentIndex(), 0);
        f.window->close();
        QCOMPARE(stored(), text);
    }

    void a_later_format_survives_a_trader_who_arranges_something()
    {
        MainWindowFixture f;
        const QString later = u"{\"version\":2}"_s;
        store(later);
        f.open();
        toolbox(f).setCurrentIndex(1);
        f.window->close();
        QCOMPARE(stored(), later);
    }

    void damage_is_over_when_a_trader_arranges_something()
    {
        MainWindowFixture f;
        store(u"{{"_s);
        f.open();
        toolbox(f).setCurrentIndex(1);
        f.window->close();
        f.open();
        QCOMPARE(toolbox(f).currentIndex(), 1);
    }

    void parts_that_make_no_sense_are_left_out()
    {
        MainWindowFixture f;
        f.open();
        const int usual = list(f, u"tradeList"_s).header()->sectionSize(0);
        f.window->close();
        store(u"{\"version\":1,\"tab\":\"noSuchPage\",\"popup\":\"AAAA\",\"columns\":{\"tradeList\":7,"
              "\"noSuchList\":{\"fontHeight\":16,\"widths\":[1]},\"historyList\":"
              "{\"fontHeight\":0,\"widths\":[90]}}}"_s);
        f.open();
        QCOMPARE(list(f, u"tradeList"_s).header()->sectionSize(0), usual);
        QCOMPARE(list(f, u"historyList"_s).header()->sectionSize(0), 90);
        QCOMPARE(toolbox(f).currentIndex(), 0);
        f.window->togglePopupPrices();
        QVERIFY(popup(f)->isVisible());
    }
};

TAVORAN_TEST(tst_PaneKeeper)
#include "tst_PaneKeeper.moc"
