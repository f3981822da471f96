#include "orders/PriceDisplay.h"

#include "app/ui/PlainText.h"

using namespace Qt::StringLiterals;

PriceDisplay::PriceDisplay(QWidget* parent)
    : QLabel(parent)
    , ReadAloud(static_cast<QWidget&>(*this), QAccessible::StaticText)
{
    makePlain(this);
    setAlignment(Qt::AlignCenter);
    // Beside each other where there is room, else one below the other: a cut price reads as another price.
    setWordWrap(true);
    setStyleSheet("font-size:26pt; font-weight:bold; color:#222;"_L1);
    setSymbol({});
    showPrices({}, {});
}

void PriceDisplay::setSymbol(const QString& symbol)
{
    //: %1 a symbol
    setAccessibleName(tr("Prices of %1").arg(symbol));
}

void PriceDisplay::showPrices(const QString& bid, const QString& ask)
{
    m_bid = bid;
    m_ask = ask;
    //: %1 bid, %2 ask
    setText(bid.isEmpty() ? u"— / —"_s : tr("%1 / %2").arg(bid, ask));
    noteReading();
}

QString PriceDisplay::reading() const
{
    return m_bid.isEmpty() ? tr("No prices yet") : tr("Bid %1, ask %2").arg(m_bid, m_ask);
}
