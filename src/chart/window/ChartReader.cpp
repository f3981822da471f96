#include "chart/window/ChartReader.h"

#include "app/ui/ScreenReader.h"
#include "chart/data/ChartSpeech.h"
#include "chart/layers/ChartFrame.h"
#include "chart/window/ChartWidget.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

namespace {

using Kind = ChartMarkKey::Kind;

/// What of a drawing stays the same while the server's list is read again.
QString identity(const Drawing& drawing)
{
    if (!drawing.id.isEmpty())
        return drawing.id;
    QString places;
    for (const DrawingPoint& point : drawing.points)
        places += u"/%1/%2"_s.arg(point.time).arg(point.price, 0, 'g', 17);
    return drawing.type + places;
}

/// Adds the key, under a number that no equal one has.
void append(QList<ChartMarkKey>& keys, ChartMarkKey key)
{
    while (keys.contains(key))
        ++key.number;
    keys.append(key);
}

} // namespace

ChartReader::ChartReader(ChartWidget& chart)
    : m_chart(chart)
    , m_news([this] { return tellNews(); })
{
}

ChartReader::~ChartReader()
{
    for (const Known& known : m_known)
        QAccessible::deleteAccessibleInterface(known.id);
}

QString ChartReader::reading() const
{
    const ChartFrame frame = m_chart.frame();
    const QString held = frame.draggedLevel < 0 ? QString() : levelName(frame, frame.draggedLevel);
    return speech::chartReading({frame, frame.candles, frame.averageValues, frame.paneValues, frame.bid,
        frame.ask, frame.crosshair, held});
}

QString ChartReader::levelName(const ChartFrame& frame, qsizetype index) const
{
    const TradeLevel& level = frame.levels[static_cast<std::size_t>(index)];
    return speech::levelName(
        level, frame.draggedLevel == index ? frame.draggedPrice : level.price, m_chart.digits());
}

QList<ChartMarkKey> ChartReader::marks() const
{
    QList<ChartMarkKey> keys;
    for (const TradeLevel& level : m_chart.tradeLevels())
        append(keys, {Kind::Level, level.tradeId + u'/' + level.kind});
    for (const Drawing& drawing : m_chart.drawings()) {
        if (!speech::drawingName(drawing, m_chart.digits()).isEmpty())
            append(keys, {Kind::Drawing, identity(drawing)});
    }
    if (!m_chart.autoScroll())
        keys.append({Kind::EndButton, {}});
    return keys;
}

qsizetype ChartReader::markIndex(const ChartMarkKey& key) const
{
    ChartMarkKey each = key;
    each.number = 0;
    if (key.kind == Kind::Level) {
        const QList<TradeLevel>& levels = m_chart.tradeLevels();
        for (qsizetype i = 0; i < levels.size(); ++i) {
            if (levels.at(i).tradeId + u'/' + levels.at(i).kind == key.id && each.number++ == key.number)
                return i;
        }
    } else if (key.kind == Kind::Drawing) {
        const QList<Drawing>& drawings = m_chart.drawings();
        for (qsizetype i = 0; i < drawings.size(); ++i) {
            if (identity(drawings.at(i)) == key.id && each.number++ == key.number)
                return i;
        }
    }
    return -1;
}

QString ChartReader::markName(const ChartMarkKey& key) const
{
    if (key.kind == Kind::EndButton)
        return QCoreApplication::translate("ChartWidget", "Scroll to the newest bar");
    const qsizetype index = markIndex(key);
    if (index < 0)
        return {};
    if (key.kind == Kind::Drawing)
        return speech::drawingName(m_chart.drawings().at(index), m_chart.digits());
    return levelName(m_chart.frame(), index);
}

QAccessibleInterface* ChartReader::mark(const ChartMarkKey& key)
{
    return QAccessible::accessibleInterface(know(key).id);
}

ChartReader::Known& ChartReader::know(const ChartMarkKey& key)
{
    for (Known& known : m_known) {
        if (known.key == key)
            return known;
    }
    m_known.append(
        {key, QAccessible::registerAccessibleInterface(new ChartMark(m_chart, key)), markName(key)});
    return m_known.last();
}

void ChartReader::noteMarks()
{
    if (m_known.isEmpty() && !isReaderThere())
        return;
    const QList<ChartMarkKey> now = marks();
    const auto tell = [](QAccessible::Id id, QAccessible::Event kind) {
        QAccessibleEvent event(QAccessible::accessibleInterface(id), kind);
        tellReader(event);
    };
    for (qsizetype i = m_known.size(); i > 0; --i) {
        const Known& known = m_known.at(i - 1);
        if (now.contains(known.key))
            continue;
        tell(known.id, QAccessible::ObjectDestroyed);
        QAccessible::deleteAccessibleInterface(known.id);
        m_known.removeAt(i - 1);
    }
    if (!isReaderThere())
        return;
    for (const ChartMarkKey& key : now) {
        const qsizetype before = m_known.size();
        const QAccessible::Id id = know(key).id;
        if (m_known.size() > before)
            tell(id, QAccessible::ObjectCreated);
    }
    m_news.note();
}

bool ChartReader::tellNews()
{
    bool told = false;
    if (QString now = reading(); now != m_toldReading) {
        m_toldReading = std::move(now);
        tellReader(m_chart, QAccessible::DescriptionChanged);
        told = true;
    }
    for (Known& known : m_known) {
        QString name = markName(known.key);
        if (name == known.toldName)
            continue;
        known.toldName = std::move(name);
        QAccessibleEvent event(QAccessible::accessibleInterface(known.id), QAccessible::NameChanged);
        tellReader(event);
        told = true;
    }
    return told;
}
