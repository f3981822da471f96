#pragma once

#include "panes/MarketWatchWidget.h"
#include "support/ParseJson.h"
#include "support/Records.h"

#include <QStackedWidget>
#include <QTabBar>
#include <QTreeWidget>
#include <QtTest>

/// What the tests of the market watch share.
namespace fixtures {

using namespace Qt::StringLiterals;

inline const QByteArray threeSymbols = R"([
    {"name":"EURUSD","description":"Euro","digits":5,"sortOrder":2,"dailyOpen":"1.00000"},
    {"name":"GOLD","description":"<b>Gold</b> \u0026 silver","digits":2,"sortOrder":1,
     "contractSize":"100","commission":3.5,"swapLong":"-12.345678","swapShort":"x"},
    {"name":"OIL","sortOrder":3,"dailyOpen":null}])";

/// A market watch on show and its parts.
struct Watch {
    MarketWatchWidget widget;
    QStackedWidget* pages = widget.findChild<QStackedWidget*>();
    QTreeWidget* list = qobject_cast<QTreeWidget*>(pages->widget(0));
    QTreeWidget* details = qobject_cast<QTreeWidget*>(pages->widget(1));
    QTabBar* tabs = widget.findChild<QTabBar*>();

    explicit Watch(const QJsonArray& symbols = parseArray(threeSymbols))
    {
        widget.resize(400, 300);
        widget.show();
        widget.setSymbols(symbols);
    }
    [[nodiscard]] QTreeWidgetItem* row(const QString& name) const
    {
        return list->findItems(name, Qt::MatchExactly | Qt::MatchCaseSensitive).value(0);
    }
    [[nodiscard]] QStringList names() const
    {
        QStringList all;
        for (int i = 0; i < list->topLevelItemCount(); ++i)
            all.append(list->topLevelItem(i)->text(0));
        return all;
    }
    void quote(const records::Value& bid, const records::Value& ask)
    {
        widget.updatePrices(records::prices({{"EURUSD", bid, ask}}));
    }
    void doubleClick(QTreeWidgetItem* item) const
    {
        const QPoint spot = list->visualItemRect(item).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, spot);
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, spot);
    }
};

inline QColor colorOf(const QTreeWidgetItem* item, int column)
{
    return item->foreground(column).color();
}

inline QImage imageOf(const QIcon& icon)
{
    return icon.pixmap(16, 16).toImage();
}

} // namespace fixtures
