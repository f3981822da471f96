#include "mainwindow/TradeMenu.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/ui/HeldEnter.h"
#include "net/records/TradeRecord.h"

#include <QMenu>
#include <QMessageBox>
#include <QWidget>

using namespace Qt::StringLiterals;

TradeMenu::TradeMenu(QWidget& window)
    : QObject(&window)
    , m_window(window)
{
}

void TradeMenu::popUp(const QPoint& globalPos, const QJsonObject& trade)
{
    if (trade.isEmpty())
        return;
    auto* menu = new QMenu(&m_window);
    menu->setObjectName("tradeMenu"_L1);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    if (trade::isPending(trade))
        menu->addAction(tr("Cancel Order"), this, [this, trade] { Q_EMIT cancelRequested(trade); });
    else
        menu->addAction(tr("Close Position"), this, [this, trade] { askToClose(trade); });
    menu->addAction(tr("Modify..."), this, [this, trade] { Q_EMIT modifyRequested(trade); });
    menu->addSeparator();
    menu->addAction(tr("New Order..."), this, &TradeMenu::newOrderRequested);
    refuseHeldEnter(*menu); // it would go to the first entry and choose that at once
    menu->popup(globalPos);
}

void TradeMenu::askToClose(const QJsonObject& trade)
{
    //: %1 the side, %2 lots, %3 the symbol
    const QString description = tr("%1 %2 %3")
                                    .arg(shownName(trade::typeText(trade).toLower()),
                                        formatVolume(trade::lots(trade)), shownName(trade::symbol(trade)));
    auto* question = new QMessageBox(QMessageBox::Question, tr("Close Position"),
        //: %1 side, lots and symbol, %2 the ticket
        tr("Close position %1 (#%2)?").arg(description, shownName(shortId(trade::id(trade)))),
        QMessageBox::Yes | QMessageBox::No, &m_window);
    question->setTextFormat(Qt::PlainText);
    question->setDefaultButton(QMessageBox::Yes);
    question->setAttribute(Qt::WA_DeleteOnClose);
    refuseHeldEnter(*question);
    connect(question, &QMessageBox::finished, this, [this, trade](int button) {
        if (button == QMessageBox::Yes)
            Q_EMIT closeConfirmed(trade);
    });
    question->open();
}
