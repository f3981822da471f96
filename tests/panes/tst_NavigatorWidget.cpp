#include "app/Theme.h"
#include "panes/NavigatorWidget.h"
#include "support/ParseJson.h"
#include "support/TestMain.h"

#include <QTabBar>
#include <QTreeWidget>

using namespace Qt::StringLiterals;
using fixtures::parseArray;

namespace {

struct Navigator {
    NavigatorWidget widget;
    QTreeWidget* tree = widget.findChild<QTreeWidget*>();

    Navigator()
    {
        widget.resize(300, 500);
        widget.show();
    }
    [[nodiscard]] QTreeWidgetItem* root() const { return tree->topLevelItem(0); }
    [[nodiscard]] QTreeWidgetItem* accounts() const { return root()->child(0); }
    [[nodiscard]] QTreeWidgetItem* indicators() const { return root()->child(1); }
    [[nodiscard]] QTreeWidgetItem* experts() const { return root()->child(2); }

    void doubleClick(QTreeWidgetItem* item) const
    {
        const QPoint spot = tree->visualItemRect(item).center();
        QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, spot);
        QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, spot);
    }
};

QStringList childTexts(const QTreeWidgetItem* item)
{
    QStringList texts;
    for (int i = 0; i < item->childCount(); ++i)
        texts.append(item->child(i)->text(0));
    return texts;
}

QImage iconOf(const QTreeWidgetItem* item)
{
    return item->icon(0).pixmap(16, 16).toImage();
}

} // namespace

class TestNavigatorWidget final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hasItsFoldersAndIndicatorsFromTheStart();
    void listsAccountsWithRoundedBalance();
    void marksTheActiveAccountThroughRefreshes();
    void anUnknownActiveAccountMarksNone();
    void oddAccountsDoNoHarm();
    void doubleClicksSayWhatIsWanted();
    void foldersAndDisabledEntriesSayNothing();
    void listsScriptsByBaseName();
    void tabsDoNotTouchTheTree();
    void iconsFollowTheTheme();
};

void TestNavigatorWidget::hasItsFoldersAndIndicatorsFromTheStart()
{
    const Navigator navigator;
    QCOMPARE(navigator.tree->topLevelItemCount(), 1);
    QCOMPARE(navigator.root()->text(0), u"Tavoran Terminal"_s);
    QCOMPARE(
        childTexts(navigator.root()), (QStringList{u"Accounts"_s, u"Indicators"_s, u"Expert Advisors"_s}));
    QCOMPARE(childTexts(navigator.indicators()),
        (QStringList{u"Moving Average"_s, u"Exponential MA"_s, u"Relative Strength Index"_s}));
    QCOMPARE(navigator.indicators()->child(0)->data(0, Qt::UserRole).toString(), u"indicator:sma"_s);
    QCOMPARE(navigator.indicators()->child(1)->data(0, Qt::UserRole).toString(), u"indicator:ema"_s);
    QCOMPARE(navigator.indicators()->child(2)->data(0, Qt::UserRole).toString(), u"indicator:rsi"_s);
    QCOMPARE(childTexts(navigator.experts()), QStringList{u"(none installed)"_s});
    QVERIFY(navigator.experts()->child(0)->isDisabled());
    QVERIFY(navigator.root()->isExpanded() && navigator.accounts()->isExpanded()
        && navigator.indicators()->isExpanded() && navigator.experts()->isExpanded());
    QVERIFY(navigator.tree->isHeaderHidden());
    QCOMPARE(navigator.tree->indentation(), 14);
}

void TestNavigatorWidget::listsAccountsWithRoundedBalance()
{
    Navigator navigator;
    navigator.widget.setAccounts(parseArray(R"([{"id":"w","isWallet":true,"balance":10000.6},
        {"id":"d","type":"DEMO","balance":"99999.4"},{"id":"p","Plan":{"name":"Gold","steps":2},"phase":2},
        {"id":"x","type":"DEMO","balance":"nan"}])"));
    QCOMPARE(childTexts(navigator.accounts()),
        (QStringList{
            u"Real  (10001)"_s, u"Demo  (99999)"_s, u"Gold — Challenge 2/2  (0)"_s, u"Demo  (0)"_s}));
    QVERIFY(navigator.accounts()->isExpanded());
    navigator.widget.setAccounts({});
    QCOMPARE(navigator.accounts()->childCount(), 0);
}

void TestNavigatorWidget::marksTheActiveAccountThroughRefreshes()
{
    Navigator navigator;
    const QJsonArray accounts = parseArray(R"([{"id":"a","type":"DEMO"},{"id":"b","type":"DEMO"}])");
    navigator.widget.setAccounts(accounts);
    navigator.widget.setActiveAccount(u"b"_s);
    QCOMPARE(int(navigator.accounts()->child(0)->font(0).weight()), 400);
    QCOMPARE(int(navigator.accounts()->child(1)->font(0).weight()), 700);
    navigator.widget.setAccounts(accounts);
    QCOMPARE(int(navigator.accounts()->child(0)->font(0).weight()), 400);
    QCOMPARE(int(navigator.accounts()->child(1)->font(0).weight()), 700);
    navigator.widget.setActiveAccount(u"a"_s);
    QCOMPARE(int(navigator.accounts()->child(0)->font(0).weight()), 700);
    QCOMPARE(int(navigator.accounts()->child(1)->font(0).weight()), 400);
}

void TestNavigatorWidget::anUnknownActiveAccountMarksNone()
{
    Navigator navigator;
    navigator.widget.setAccounts(parseArray(R"([{"id":"a"},{"id":"b"}])"));
    navigator.widget.setActiveAccount(u"a"_s);
    navigator.widget.setActiveAccount(u"zzz"_s);
    QCOMPARE(int(navigator.accounts()->child(0)->font(0).weight()), 400);
    QCOMPARE(int(navigator.accounts()->child(1)->font(0).weight()), 400);
}

void TestNavigatorWidget::oddAccountsDoNoHarm()
{
    Navigator navigator;
    navigator.widget.setAccounts(
        parseArray(R"([1,null,"x",{},{"id":"a"},{"id":"a"},{"id":7,"balance":1e308}])"));
    QCOMPARE(navigator.accounts()->childCount(), 7);
    navigator.widget.setActiveAccount(u"a"_s);
    QCOMPARE(int(navigator.accounts()->child(4)->font(0).weight()), 700);
    QCOMPARE(int(navigator.accounts()->child(5)->font(0).weight()), 700);
}

void TestNavigatorWidget::doubleClicksSayWhatIsWanted()
{
    Navigator navigator;
    navigator.widget.setAccounts(parseArray(R"([{"id":"account:7","type":"DEMO"}])"));
    navigator.widget.setExperts({u"/scripts/a.b.js"_s});
    QSignalSpy accounts(&navigator.widget, &NavigatorWidget::accountActivated);
    QSignalSpy indicators(&navigator.widget, &NavigatorWidget::indicatorActivated);
    QSignalSpy experts(&navigator.widget, &NavigatorWidget::expertActivated);
    navigator.doubleClick(navigator.accounts()->child(0));
    navigator.doubleClick(navigator.indicators()->child(2));
    navigator.doubleClick(navigator.experts()->child(0));
    QCOMPARE(accounts.size(), 1);
    QCOMPARE(accounts.at(0).at(0).toString(), u"account:7"_s);
    QCOMPARE(indicators.size(), 1);
    QCOMPARE(indicators.at(0).at(0).toString(), u"rsi"_s);
    QCOMPARE(experts.size(), 1);
    QCOMPARE(experts.at(0).at(0).toString(), u"/scripts/a.b.js"_s);
}

void TestNavigatorWidget::foldersAndDisabledEntriesSayNothing()
{
    Navigator navigator;
    QSignalSpy accounts(&navigator.widget, &NavigatorWidget::accountActivated);
    QSignalSpy indicators(&navigator.widget, &NavigatorWidget::indicatorActivated);
    QSignalSpy experts(&navigator.widget, &NavigatorWidget::expertActivated);
    navigator.doubleClick(navigator.experts()->child(0));
    navigator.doubleClick(navigator.indicators());
    navigator.doubleClick(navigator.root());
    QCOMPARE(accounts.size() + indicators.size() + experts.size(), 0);
}

void TestNavigatorWidget::listsScriptsByBaseName()
{
    Navigator navigator;
    navigator.widget.setExperts({u"/s/trend.v2.js"_s, u"/s/grid.js"_s});
    QCOMPARE(childTexts(navigator.experts()), (QStringList{u"trend.v2"_s, u"grid"_s}));
    QCOMPARE(navigator.experts()->child(0)->toolTip(0), u"Double-click to attach to the active chart"_s);
    QVERIFY(!navigator.experts()->child(0)->isDisabled());
    QVERIFY(navigator.experts()->isExpanded());
    navigator.widget.setExperts({});
    QCOMPARE(childTexts(navigator.experts()), QStringList{u"(none installed)"_s});
    QVERIFY(navigator.experts()->child(0)->isDisabled());
}

void TestNavigatorWidget::tabsDoNotTouchTheTree()
{
    const Navigator navigator;
    auto* tabs = navigator.widget.findChild<QTabBar*>();
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->shape(), QTabBar::RoundedSouth);
    QVERIFY(!tabs->expanding());
    QVERIFY(tabs->y() >= navigator.tree->geometry().bottom());
    QCOMPARE(navigator.tree->pos(), QPoint(0, 0));
    QCOMPARE(navigator.tree->width(), navigator.widget.width());
    QCOMPARE(tabs->geometry().bottom(), navigator.widget.rect().bottom());
    QCOMPARE(tabs->tabText(0), u"Common"_s);
    QCOMPARE(tabs->tabText(1), u"Favorites"_s);
    tabs->setCurrentIndex(1);
    QVERIFY(navigator.tree->isVisible());
    QCOMPARE(navigator.root()->childCount(), 3);
}

void TestNavigatorWidget::iconsFollowTheTheme()
{
    setTheme(false);
    applyTheme(*qApp);
    Navigator navigator;
    navigator.widget.setAccounts(parseArray(R"([{"id":"a"}])"));
    navigator.widget.setExperts({u"/s/grid.js"_s});
    const QList<QTreeWidgetItem*> items{navigator.accounts(), navigator.accounts()->child(0),
        navigator.indicators()->child(0), navigator.experts()->child(0)};
    QList<QImage> light;
    for (const QTreeWidgetItem* item : items)
        light.append(iconOf(item));
    for (int i = 0; i < light.size(); ++i) {
        for (int k = 0; k < i; ++k)
            QVERIFY2(light.at(i) != light.at(k), qPrintable(items.at(i)->text(0)));
    }
    QCOMPARE(iconOf(navigator.indicators()), iconOf(navigator.accounts()));
    QCOMPARE(iconOf(navigator.experts()), iconOf(navigator.experts()->child(0)));
    QCOMPARE(iconOf(navigator.root()), appIcon().pixmap(16, 16).toImage());
    setTheme(true);
    applyTheme(*qApp);
    for (int i = 0; i < items.size(); ++i)
        QTRY_VERIFY2(iconOf(items.at(i)) != light.at(i), QByteArray::number(i).constData());
    setTheme(false);
    applyTheme(*qApp);
    for (int i = 0; i < items.size(); ++i)
        QTRY_COMPARE(iconOf(items.at(i)), light.at(i));
}

TAVORAN_TEST_MAIN(TestNavigatorWidget)
#include "tst_NavigatorWidget.moc"
