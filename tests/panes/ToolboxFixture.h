#pragma once

#include "panes/TerminalPane.h"
#include "support/Records.h"

#include <QLabel>
#include <QTreeWidget>

namespace toolboxFixture {

using namespace Qt::StringLiterals;

inline const QJsonArray twoPositions{records::position("p1-long-id").buy("0.10").at("1.07").profit("12.5"),
    records::position("p2").symbol("GOLD").sell(0).at(1900).profit(-3)};
inline const QJsonArray oneOrder{records::pendingOrder("o1")};
inline const QHash<QString, int> goldDigits{{u"GOLD"_s, 2}};

struct Toolbox {
    TerminalPane pane;
    QTreeWidget* trades = pane.findChild<QTreeWidget*>(u"tradeList"_s);
    QTreeWidget* history = pane.findChild<QTreeWidget*>(u"historyList"_s);
    QTreeWidget* experts = pane.findChild<QTreeWidget*>(u"expertsList"_s);
    QTreeWidget* journal = pane.findChild<QTreeWidget*>(u"journalList"_s);
    QLabel* summary = pane.findChild<QLabel*>(u"accountSummary"_s);

    Toolbox()
    {
        pane.resize(900, 240);
        pane.show();
    }
    void fill() { pane.setOpenRows(twoPositions, oneOrder, goldDigits); }
    [[nodiscard]] QString cell(int row, int column) const { return trades->topLevelItem(row)->text(column); }
    [[nodiscard]] QColor color(int row, int column) const
    {
        return trades->topLevelItem(row)->foreground(column).color();
    }
};

inline QJsonArray manyPositions(int count)
{
    QJsonArray trades;
    for (int i = 0; i < count; ++i)
        trades.append(records::position(u"many%1"_s.arg(i)).buy(1));
    return trades;
}

} // namespace toolboxFixture
