#include "MarketWatchFixture.h"
#include "app/ui/Theme.h"
#include "panes/PaneIcons.h"
#include "support/Records.h"
#include "support/TestMain.h"

#include <QHeaderView>
#include <QLayout>
#include <QTextDocument>

using namespace Qt::StringLiterals;
using fixtures::colorOf;
using fixtures::imageOf;
using fixtures::Watch;

namespace {

QStringList values(const QTreeWidget* details)
{
    QStringList all;
    for (int i = 0; i < details->topLevelItemCount(); ++i)
        all.append(details->topLevelItem(i)->text(0) + u'=' + details->topLevelItem(i)->text(1));
    return all;
}

} // namespace

class TestMarketWatchLooks final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        setTheme(false);
        applyTheme(*qApp);
    }

    void looksAsPlanned()
    {
        const Watch watch;
        QCOMPARE(watch.list->columnCount(), 4);
        QCOMPARE(watch.list->headerItem()->text(0), u"Symbol"_s);
        QCOMPARE(watch.list->headerItem()->text(1), u"Bid"_s);
        QCOMPARE(watch.list->headerItem()->text(2), u"Ask"_s);
        QCOMPARE(watch.list->headerItem()->text(3), u"Daily"_s);
        for (int column = 1; column < 4; ++column)
            QCOMPARE(watch.list->headerItem()->textAlignment(column), int(Qt::AlignRight | Qt::AlignVCenter));
        QCOMPARE(watch.list->columnWidth(0), 96);
        QCOMPARE(watch.list->columnWidth(1), 70);
        QCOMPARE(watch.list->columnWidth(2), 70);
        QVERIFY(watch.list->uniformRowHeights());
        QVERIFY(watch.list->allColumnsShowFocus());
        QVERIFY(!watch.list->rootIsDecorated());
        QCOMPARE(watch.details->columnWidth(0), 130);
        QCOMPARE(watch.tabs->count(), 3);
        QCOMPARE(watch.tabs->shape(), QTabBar::RoundedSouth);
        QVERIFY(!watch.tabs->expanding());
        QCOMPARE(watch.tabs->tabText(0), u"Symbols"_s);
        QCOMPARE(watch.tabs->tabText(1), u"Details"_s);
        QCOMPARE(watch.tabs->tabText(2), u"Ticks"_s);
        QCOMPARE(watch.details->headerItem()->text(0), u"Property"_s);
        QCOMPARE(watch.details->headerItem()->text(1), u"Value"_s);
        QVERIFY(!watch.details->rootIsDecorated());
        QCOMPARE(watch.widget.layout()->contentsMargins(), QMargins());
        QCOMPARE(watch.widget.layout()->spacing(), 0);
    }

    void theDailyChangeFitsANarrowDock()
    {
        Watch watch;
        QVERIFY(QTest::qWaitForWindowExposed(&watch.widget));
        for (const int width : {600, 400, 310}) {
            watch.widget.resize(width, 300);
            QTRY_COMPARE(watch.list->header()->length(), watch.list->header()->viewport()->width());
            QCOMPARE(watch.list->columnWidth(1), 70);
        }
        watch.tabs->setCurrentIndex(1);
        watch.widget.resize(200, 300);
        QTRY_COMPARE(watch.details->header()->length(), watch.details->header()->viewport()->width());
        QCOMPARE(watch.details->columnWidth(0), 130);
    }

    void descriptionsNeverActAsRichText()
    {
        const Watch watch;
        QCOMPARE(watch.row(u"EURUSD"_s)->toolTip(0), u"Euro"_s);
        const QString tip = watch.row(u"GOLD"_s)->toolTip(0);
        QVERIFY(!tip.contains(u"<b>"_s));
        QTextDocument shown;
        shown.setHtml(tip);
        QCOMPARE(shown.toPlainText(), u"<b>Gold</b> & silver"_s);
    }

    void rowsFollowTheTheme()
    {
        Watch watch;
        watch.quote(1.1, 1.2);
        watch.quote(1.2, 1.1);
        watch.widget.updatePrices(records::prices({{"GOLD", 2}}));
        watch.widget.updatePrices(records::prices({{"GOLD", 1}}));
        const QTreeWidgetItem* rising = watch.row(u"EURUSD"_s);
        const QTreeWidgetItem* falling = watch.row(u"GOLD"_s);
        const QTreeWidgetItem* idle = watch.row(u"OIL"_s);
        const QImage lightPicture = watch.list->grab().toImage();

        setTheme(true);
        applyTheme(*qApp);
        QTRY_COMPARE(colorOf(rising, 1), QColor(u"#3ba7ff"_s));
        QCOMPARE(colorOf(rising, 2), QColor(u"#ff4a4a"_s));
        QCOMPARE(colorOf(rising, 3), QColor(u"#26d367"_s));
        QCOMPARE(imageOf(rising->icon(0)), imageOf(upArrowIcon(QColor(u"#3ba7ff"_s))));
        QCOMPARE(imageOf(falling->icon(0)), imageOf(downArrowIcon(QColor(u"#ff4a4a"_s))));
        QCOMPARE(colorOf(idle, 1), QColor(u"#dcdcdc"_s));

        setTheme(false);
        applyTheme(*qApp);
        QTRY_COMPARE(colorOf(rising, 1), QColor(u"#0a63c2"_s));
        QTRY_COMPARE(watch.list->grab().toImage(), lightPicture);
    }

    void detailsShowTheSpecification()
    {
        Watch watch;
        watch.list->setCurrentItem(nullptr);
        watch.tabs->setCurrentIndex(1);
        QCOMPARE(watch.pages->currentIndex(), 1);
        QCOMPARE(values(watch.details),
            (QStringList{u"Symbol=GOLD"_s, u"Description=<b>Gold</b> & silver"_s, u"Digits=2"_s,
                u"Contract size=100"_s, u"Commission (per lot)=3.5"_s, u"Swap long=-12.3457"_s,
                u"Swap short=0"_s, u"Minimum volume=0.01"_s}));
        watch.tabs->setCurrentIndex(0);
        QCOMPARE(watch.pages->currentIndex(), 0);
    }

    void detailsFollowTheCurrentRow()
    {
        Watch watch;
        watch.tabs->setCurrentIndex(1);
        watch.list->setCurrentItem(watch.row(u"OIL"_s));
        QCOMPARE(values(watch.details).value(0), u"Symbol=OIL"_s);
        QCOMPARE(values(watch.details).value(2), u"Digits=5"_s);
        watch.widget.setSymbols({records::symbol("OIL").digits(3)});
        QCOMPARE(values(watch.details).value(2), u"Digits=3"_s);
    }

    void detailsOfAnEmptyListAreEmpty()
    {
        Watch watch;
        watch.widget.setSymbols({});
        watch.tabs->setCurrentIndex(1);
        QCOMPARE(watch.details->topLevelItemCount(), 0);
    }

    void ticksCannotBeSelected()
    {
        const Watch watch;
        QVERIFY(!watch.tabs->isTabEnabled(2));
        QTest::mouseClick(watch.tabs, Qt::LeftButton, {}, watch.tabs->tabRect(2).center());
        QCOMPARE(watch.tabs->currentIndex(), 0);
        QCOMPARE(watch.pages->currentIndex(), 0);
    }
};

TAVORAN_TEST(TestMarketWatchLooks)
#include "tst_MarketWatchLooks.moc"
