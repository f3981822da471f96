#include "app/ui/Theme.h"
#include "panes/NavigatorWidget.h"
#include "support/Hands.h"
#include "support/ParseJson.h"
#include "support/Records.h"
#include "support/TestMain.h"

#include <QTabBar>
#include <QTreeWidget>

using namespace Qt::StringLiterals;
using fixtures::parseArray;

namespace {

struct Navigator {
    NavigatorWidget widget{{{u"sma"_s, u"Moving Average"_s}, {u"ema"_s, u"Exponential MA"_s},
        {u"rsi"_s, u"Relative Strength Index"_s}}};
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

bool isBlank(const QImage& image)
{
    QImage nothing(image.size(), QImage::Format_ARGB32_Premultiplied);
    nothing.fill(Qt::transparent);
    return image.convertToFormat(nothing.format()) == nothing;
}

} // namespace

class TestNavigatorWidget final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void enter_does_what_a_double_click_does_once()
    {
        Navigator navigator;
        navigator.widget.setAccounts({records::account("a1")});
        navigator.widget.setExperts({u"/x/Cross.js"_s});
        navigator.widget.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&navigator.widget));
        QStringList told;
        connect(&navigator.widget, &NavigatorWidget::accountActivated, this,
            [&told](const QString& id) { told.append(u"account "_s + id); });
        connect(&navigator.widget, &NavigatorWidget::indicatorActivated, this,
            [&told](const QString& key) { told.append(u"indicator "_s + key); });
        connect(&navigator.widget, &NavigatorWidget::expertActivated, this,
            [&told](const QString& path) { told.append(u"expert "_s + path); });
        navigator.tree->setFocus();
        for (QTreeWidgetItem* item : {navigator.root(), navigator.accounts(), navigator.accounts()->child(0),
                 navigator.indicators()->child(2), navigator.experts()->child(0)}) {
            navigator.tree->setCurrentItem(item);
            hands::press(Qt::Key_Return);
            hands::hold(Qt::Key_Return);
        }
        QCOMPARE(told, QStringList({u"account a1"_s, u"indicator rsi"_s, u"expert /x/Cross.js"_s}));
    }

    void entries_that_are_read_again_stay_current()
    {
        Navigator navigator;
        const QJsonArray accounts{records::account("a1"), records::account("a2"), records::account("a3")};
        navigator.widget.setAccounts(accounts);
        navigator.widget.setExperts({u"/x/Cross.js"_s, u"/x/Grid.js"_s});
        navigator.tree->setCurrentItem(navigator.accounts()->child(1));
        navigator.widget.setAccounts(accounts);
        navigator.widget.setExperts({u"/x/Cross.js"_s, u"/x/Grid.js"_s});
        QCOMPARE(navigator.tree->currentItem(), navigator.accounts()->child(1));
        QCOMPARE(navigator.tree->selectedItems(), {navigator.accounts()->child(1)});
        navigator.tree->setCurrentItem(navigator.experts()->child(1));
        navigator.widget.setExperts({u"/x/Average.js"_s, u"/x/Cross.js"_s, u"/x/Grid.js"_s});
        navigator.widget.setAccounts(accounts);
        QCOMPARE(navigator.tree->currentItem(), navigator.experts()->child(2));
        QCOMPARE(navigator.tree->selectedItems(), {navigator.experts()->child(2)});
    }

    void accounts_that_are_read_again_keep_their_icon()
    {
        // A new one would be painted anew, and leave the old one's pictures behind in Qt's cache.
        Navigator navigator;
        navigator.widget.setAccounts({records::account("a1")});
        const qint64 before = navigator.accounts()->child(0)->icon(0).cacheKey();
        navigator.widget.setAccounts({records::account("a1"), records::account("a2")});
        QCOMPARE(navigator.accounts()->child(0)->icon(0).cacheKey(), before);
        QCOMPARE(navigator.accounts()->child(1)->icon(0).cacheKey(), before);
    }

    void an_entry_that_goes_leaves_its_place_to_the_next_one()
    {
        Navigator navigator;
        navigator.widget.setAccounts(
            {records::account("a1"), records::account("a2"), records::account("a3")});
        navigator.tree->setCurrentItem(navigator.accounts()->child(1));
        navigator.widget.setAccounts({records::account("a1"), records::account("a3")});
        QCOMPARE(navigator.tree->currentItem(), navigator.accounts()->child(1));
        navigator.widget.setAccounts({records::account("a1")});
        QCOMPARE(navigator.tree->currentItem(), navigator.accounts()->child(0));
        QCOMPARE(navigator.tree->selectedItems(), {navigator.accounts()->child(0)});
        navigator.widget.setAccounts({});
        QCOMPARE(navigator.tree->currentItem(), navigator.accounts());
        QCOMPARE(navigator.tree->selectedItems(), {navigator.accounts()});
    }

    void an_entry_that_goes_elsewhere_moves_nothing()
    {
        Navigator navigator;
        navigator.widget.setAccounts({records::account("a1"), records::account("a2")});
        navigator.tree->setCurrentItem(navigator.indicators()->child(1));
        navigator.widget.setAccounts({records::account("a2")});
        QCOMPARE(navigator.tree->currentItem(), navigator.indicators()->child(1));
        QCOMPARE(navigator.tree->selectedItems(), {navigator.indicators()->child(1)});
    }

    void hasItsFoldersAndIndicatorsFromTheStart()
    {
        const Navigator navigator;
        QCOMPARE(navigator.tree->topLevelItemCount(), 1);
        QCOMPARE(navigator.root()->text(0), u"Tavoran Terminal"_s);
        QCOMPARE(childTexts(navigator.root()),
            (QStringList{u"Accounts"_s, u"Indicators"_s, u"Expert Advisors"_s}));
        QCOMPARE(childTexts(navigator.indicators()),
            (QStringList{u"Moving Average"_s, u"Exponential MA"_s, u"Relative Strength Index"_s}));
        QCOMPARE(navigator.indicators()->child(0)->data(0, Qt::UserRole).toString(), u"indicator:sma"_s);
        QCOMPARE(navigator.indicators()->child(1)->data(0, Qt::UserRole).toString(), u"indicator:ema"_s);
        QCOMPARE(navigator.indicators()->child(2)->data(0, Qt::UserRole).toString(), u"indicator:rsi"_s);
        QCOMPARE(childTexts(navigator.experts()), QStringList{u"(none installed)"_s});
        QVERIFY(navigator.experts()->child(0)->isDisabled());
        for (const QTreeWidgetItem* item : {navigator.root(), navigator.accounts(), navigator.indicators(),
                 navigator.experts(), navigator.experts()->child(0)})
            QVERIFY2(!item->data(0, Qt::UserRole).isValid(), qPrintable(item->text(0)));
        QVERIFY(navigator.root()->isExpanded() && navigator.accounts()->isExpanded()
            && navigator.indicators()->isExpanded() && navigator.experts()->isExpanded());
        QCOMPARE(navigator.tree->columnCount(), 1);
        QVERIFY(navigator.tree->isHeaderHidden());
        QCOMPARE(navigator.tree->indentation(), 14);
    }

    void listsAccountsWithRoundedBalance()
    {
        Navigator navigator;
        navigator.widget.setAccounts({records::account("w").wallet().balance(10000.6),
            records::account("d").balance("99999.4"), records::account("p").plan("Gold", 2, 2).balance(0),
            records::account("x").balance("nan"), records::account("m").plan("%2", 1).balance(7)});
        QCOMPARE(childTexts(navigator.accounts()),
            (QStringList{u"Real  (10001)"_s, u"Demo  (99999)"_s, u"Gold — Challenge 2/2  (0)"_s,
                u"Demo  (0)"_s, u"%2 — Challenge  (7)"_s}));
        navigator.widget.setAccounts({});
        QCOMPARE(navigator.accounts()->childCount(), 0);
    }

    void marksTheActiveAccountThroughRefreshes()
    {
        Navigator navigator;
        const QJsonArray accounts{records::account("a"), records::account("b")};
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
        const auto told = [&navigator](int place) {
            return navigator.accounts()->child(place)->data(0, Qt::AccessibleDescriptionRole).toString();
        };
        QCOMPARE(told(0), u"Active account"_s);
        QCOMPARE(told(1), QString());
    }

    void anUnknownActiveAccountMarksNone()
    {
        Navigator navigator;
        navigator.widget.setAccounts({records::account("a"), records::account("b")});
        navigator.widget.setActiveAccount(u"a"_s);
        navigator.widget.setActiveAccount(u"zzz"_s);
        QCOMPARE(int(navigator.accounts()->child(0)->font(0).weight()), 400);
        QCOMPARE(int(navigator.accounts()->child(1)->font(0).weight()), 400);
    }

    void oddAccountsDoNoHarm()
    {
        Navigator navigator;
        navigator.widget.setAccounts(
            parseArray(R"([1,null,"x",{},{"id":"a"},{"id":"a"},{"id":7,"balance":1e308}])"));
        QCOMPARE(navigator.accounts()->childCount(), 7);
        navigator.widget.setActiveAccount(u"a"_s);
        QCOMPARE(int(navigator.accounts()->child(4)->font(0).weight()), 700);
        QCOMPARE(int(navigator.accounts()->child(5)->font(0).weight()), 700);
    }

    void doubleClicksSayWhatIsWanted()
    {
        Navigator navigator;
        navigator.widget.setAccounts({records::account("account:7")});
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

    void foldersAndDisabledEntriesSayNothing()
    {
        Navigator navigator;
        QSignalSpy accounts(&navigator.widget, &NavigatorWidget::accountActivated);
        QSignalSpy indicators(&navigator.widget, &NavigatorWidget::indicatorActivated);
        QSignalSpy experts(&navigator.widget, &NavigatorWidget::expertActivated);
        const QSignalSpy clicks(navigator.tree, &QTreeWidget::itemDoubleClicked);
        navigator.doubleClick(navigator.experts()->child(0));
        // A double-click folds what is below, so from the bottom up.
        for (QTreeWidgetItem* folder :
            {navigator.experts(), navigator.indicators(), navigator.accounts(), navigator.root()})
            navigator.doubleClick(folder);
        QVERIFY(clicks.size() >= 4);
        QCOMPARE(accounts.size() + indicators.size() + experts.size(), 0);
    }

    void prefixesAreComparedExactly()
    {
        const Navigator navigator;
        QSignalSpy accounts(&navigator.widget, &NavigatorWidget::accountActivated);
        QSignalSpy indicators(&navigator.widget, &NavigatorWidget::indicatorActivated);
        QSignalSpy experts(&navigator.widget, &NavigatorWidget::expertActivated);
        QTreeWidgetItem* item = navigator.indicators()->child(0);
        const QSignalSpy clicks(navigator.tree, &QTreeWidget::itemDoubleClicked);
        for (const auto& key : {u"Account:a"_s, u"INDICATOR:sma"_s, u"eXpert:/a.js"_s, u" account:a"_s}) {
            item->setData(0, Qt::UserRole, key);
            navigator.doubleClick(item);
        }
        QCOMPARE(clicks.size(), 4);
        QCOMPARE(accounts.size() + indicators.size() + experts.size(), 0);
    }

    void newEntriesUnfoldTheirFolder()
    {
        Navigator navigator;
        navigator.accounts()->setExpanded(false);
        navigator.experts()->setExpanded(false);
        navigator.widget.setAccounts({records::account("a")});
        navigator.widget.setExperts({u"/s/grid.js"_s});
        QVERIFY(navigator.accounts()->isExpanded());
        QVERIFY(navigator.experts()->isExpanded());
    }

    void listsScriptsByBaseName()
    {
        Navigator navigator;
        navigator.widget.setExperts({u"/s/trend.v2.js"_s, u"/s/grid.js"_s});
        QCOMPARE(childTexts(navigator.experts()), (QStringList{u"trend.v2"_s, u"grid"_s}));
        QCOMPARE(navigator.experts()->child(0)->toolTip(0), u"Double-click to attach to the active chart"_s);
        QVERIFY(!navigator.experts()->child(0)->isDisabled());
        navigator.widget.setExperts({u"/s/two\nlines.js"_s});
        QCOMPARE(childTexts(navigator.experts()), QStringList{u"two lines"_s});
        navigator.widget.setExperts({});
        QCOMPARE(childTexts(navigator.experts()), QStringList{u"(none installed)"_s});
        QVERIFY(navigator.experts()->child(0)->isDisabled());
    }

    void tabsDoNotTouchTheTree()
    {
        const Navigator navigator;
        auto* tabs = navigator.widget.findChild<QTabBar*>();
        QCOMPARE(tabs->count(), 2);
        QCOMPARE(tabs->shape(), QTabBar::RoundedSouth);
        QVERIFY(!tabs->expanding());
        QCOMPARE(tabs->y(), navigator.tree->geometry().bottom() + 1);
        QCOMPARE(navigator.tree->pos(), QPoint(0, 0));
        QCOMPARE(navigator.tree->width(), navigator.widget.width());
        QCOMPARE(tabs->geometry().bottom(), navigator.widget.rect().bottom());
        QCOMPARE(tabs->tabText(0), u"Common"_s);
        QCOMPARE(tabs->tabText(1), u"Favorites"_s);
        tabs->setCurrentIndex(1);
        QVERIFY(navigator.tree->isVisible());
        QCOMPARE(navigator.root()->childCount(), 3);
    }

    void iconsFollowTheTheme()
    {
        setTheme(false);
        applyTheme(*qApp);
        Navigator navigator;
        navigator.widget.setAccounts({records::account("a")});
        navigator.widget.setExperts({u"/s/grid.js"_s});
        const QList<QTreeWidgetItem*> items{navigator.accounts(), navigator.accounts()->child(0),
            navigator.indicators()->child(0), navigator.experts()->child(0)};
        QList<QImage> light;
        for (const QTreeWidgetItem* item : items) {
            light.append(iconOf(item));
            QVERIFY2(!isBlank(light.constLast()), qPrintable(item->text(0)));
        }
        for (int i = 1; i < 3; ++i)
            QCOMPARE(iconOf(navigator.indicators()->child(i)), iconOf(navigator.indicators()->child(0)));
        QVERIFY(!isBlank(iconOf(navigator.root())));
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

    void iconsShowDetailAtAHighRatio()
    {
        Navigator navigator;
        navigator.widget.setAccounts({records::account("a")});
        for (const QTreeWidgetItem* item : {navigator.accounts(), navigator.accounts()->child(0),
                 navigator.indicators()->child(0), navigator.experts()}) {
            const QPixmap sharp = item->icon(0).pixmap(QSize(16, 16), 2.0);
            QCOMPARE(sharp.size(), QSize(32, 32));
            QCOMPARE(sharp.devicePixelRatio(), 2.0);
            QImage detailed = sharp.toImage();
            detailed.setDevicePixelRatio(1.0);
            for (const Qt::TransformationMode mode : {Qt::FastTransformation, Qt::SmoothTransformation}) {
                const QImage enlarged = iconOf(item).scaled(32, 32, Qt::IgnoreAspectRatio, mode);
                QVERIFY2(enlarged.convertToFormat(detailed.format()) != detailed, qPrintable(item->text(0)));
            }
        }
    }
};

TAVORAN_TEST(TestNavigatorWidget)
#include "tst_NavigatorWidget.moc"
