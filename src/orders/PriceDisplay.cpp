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
    setStale(false);
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

void PriceDisplay::setStale(bool stale)
{
    m_stale = stale;
    setStyleSheet(stale ? "font-size:26pt; font-weight:bold; font-style:italic; color:#737373;"_L1
                        : "font-size:26pt; font-weight:bold; color:#222;"_L1);
    noteReading();
}

QString PriceDisplay::reading() const
{
    if (m_bid.isEmpty())
        return tr("No prices yet");
    return (m_stale ? tr("Disconnected; last bid %1, ask %2") : tr("Bid %1, ask %2")).arg(m_bid, m_ask);
}
