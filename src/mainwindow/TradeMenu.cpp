#include "mainwindow/TradeMenu.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/ui/HeldEnter.h"
#include "net/records/JsonNumber.h"
#include "orders/LevelsBody.h"

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
    if (isPending(trade))
        menu->addAction(tr("Cancel Order"), this, [this, trade] { Q_EMIT cancelRequested(trade); });
    else
        menu->addAction(tr("Close Position"), this, [this, trade] { askToClose(trade); });
    menu->addAction(tr("Modify..."), this, [this, trade] { Q_EMIT modifyRequested(trade); });
    menu->addSeparator();
    menu->addAction(tr("New Order..."), this, &TradeMenu::newOrderRequested);
    menu->popup(globalPos);
}

void TradeMenu::askToClose(const QJsonObject& trade)
{
    const QString description = tr("%1 %2 %3")
                                    .arg(shownName(trade.value("type"_L1).toString().toLower()),
                                        formatVolume(jsonNumber(trade.value("lotSize"_L1))),
                                        shownName(trade.value("symbol"_L1).toString()));
    auto* question = new QMessageBox(QMessageBox::Question, tr("Close Position"),
        tr("Close position %1 (#%2)?").arg(description, shownName(shortId(trade.value("id"_L1).toString()))),
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
