#include "panes/QuoteItem.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "app/ui/PlainText.h"
#include "app/ui/Theme.h"
#include "panes/PaneIcons.h"

#include <QCoreApplication>

#include <utility>

using namespace Qt::StringLiterals;

QuoteLook QuoteLook::forCurrentTheme()
{
    return {isDarkTheme(), themeTextColor(), themeUpColor(), themeDownColor(), themeGreenColor(),
        themeStaleColor(), upArrowIcon(themeUpColor()), downArrowIcon(themeDownColor()),
        upArrowIcon(themeStaleColor()), downArrowIcon(themeStaleColor())};
}

QuoteItem::QuoteItem(
    std::shared_ptr<const QuoteLook> look, const QString& name, const QString& description, int digits)
    : QTreeWidgetItem({shownName(name), QString(), QString(), QString()})
    , m_look(std::move(look))
    , m_name(name)
    , m_digits(clampDigits(digits))
{
    if (!description.isEmpty())
        setToolTip(Symbol, plainToolTip(description));
}

void QuoteItem::setBid(double bid, Tick tick)
{
    m_bid = bid;
    if (tick != Tick::None)
        m_bidTick = tick;
}

void QuoteItem::setAsk(double ask, Tick tick)
{
    m_ask = ask;
    if (tick != Tick::None)
        m_askTick = tick;
}

void QuoteItem::setDailyChange(double percent)
{
    m_daily = percent;
    m_hasDaily = true;
}

QVariant QuoteItem::data(int column, int role) const
{
    if (column == Symbol)
        return symbolData(role);
    switch (role) {
    case Qt::DisplayRole:
    case Qt::EditRole:
        return textOf(column);
    case Qt::ForegroundRole:
        return m_stale ? QVariant(m_look->stale) : brushOf(column);
    case Qt::FontRole:
        return m_stale ? staleFont() : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant::fromValue(int(Qt::AlignRight | Qt::AlignVCenter));
    default:
        return QTreeWidgetItem::data(column, role);
    }
}

QVariant QuoteItem::symbolData(int role) const
{
    const bool isUp = m_bidTick == Tick::Up;
    if (role != Qt::DecorationRole && role != Qt::AccessibleTextRole)
        return QTreeWidgetItem::data(Symbol, role);
    if (role == Qt::AccessibleTextRole && m_stale) {
        //: said of a symbol while the feed is down
        return QCoreApplication::translate("MarketWatchWidget", "%1, last known prices").arg(text(Symbol));
    }
    if (m_bidTick == Tick::None)
        return {};
    if (role == Qt::DecorationRole && m_stale)
        return isUp ? m_look->staleUp : m_look->staleDown;
    if (role == Qt::DecorationRole)
        return isUp ? m_look->up : m_look->down;
    //: what the triangle beside a symbol says
    const QString said = isUp ? QCoreApplication::translate("MarketWatchWidget", "%1, rising")
                              //: what the triangle beside a symbol says
                              : QCoreApplication::translate("MarketWatchWidget", "%1, falling");
    return said.arg(text(Symbol));
}

QVariant QuoteItem::textOf(int column) const
{
    switch (column) {
    case Bid:
        return m_bid > 0.0 ? formatPrice(m_bid, m_digits) : QString();
    case Ask:
        return m_ask > 0.0 ? formatPrice(m_ask, m_digits) : QString();
    case Daily:
        if (m_hasDaily) {
            const QString sign = m_daily >= 0.0 ? u"+"_s : QString();
            //: the change of the day: %1 a sign, %2 a number of per cent
            return QCoreApplication::translate("MarketWatchWidget", "%1%2%")
                .arg(sign, QString::number(m_daily, 'f', 2));
        }
        return QString();
    default:
        return {};
    }
}

QVariant QuoteItem::brushOf(int column) const
{
    switch (column) {
    case Bid:
        return brushOf(m_bidTick);
    case Ask:
        return brushOf(m_askTick);
    case Daily:
        if (m_hasDaily)
            return m_daily >= 0.0 ? m_look->gain : m_look->falling;
        return {};
    default:
        return {};
    }
}

const QBrush& QuoteItem::brushOf(Tick tick) const
{
    switch (tick) {
    case Tick::Up:
        return m_look->rising;
    case Tick::Down:
        return m_look->falling;
    case Tick::None:
        break;
    }
    return m_look->text;
}
