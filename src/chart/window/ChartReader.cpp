#include "chart/window/ChartReader.h"

#include "app/ui/ScreenReader.h"
#include "chart/data/ChartSpeech.h"
#include "chart/layers/ChartFrame.h"
#include "chart/window/ChartWidget.h"

#include <QCoreApplication>

#include <utility>

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

} // namespace

ChartReader::ChartReader(ChartWidget& chart)
    : m_chart(chart)
    , m_news([this] { return tellNews(); })
{
}

ChartReader::~ChartReader()
{
    for (const Known& known : std::as_const(m_known))
        QAccessible::deleteAccessibleInterface(known.id);
}

QString ChartReader::reading() const
{
    const ChartFrame frame = m_chart.frame();
    const QString held = frame.draggedLevel < 0 ? QString() : levelName(frame, frame.draggedLevel);
    return speech::chartReading({frame, frame.candles, frame.averageValues, frame.paneValues, frame.bid,
        frame.ask, frame.crosshair, held, frame.quoteStale});
}

QString ChartReader::levelName(const ChartFrame& frame, qsizetype index) const
{
    const TradeLevel& level = frame.levels[static_cast<std::size_t>(index)];
    return speech::levelName(
        level, frame.draggedLevel == index ? frame.draggedPrice : level.price, m_chart.digits());
}

void ChartReader::Places::add(ChartMarkKey key, qsizetype index)
{
    while (indices.contains(key))
        ++key.number;
    keys.append(key);
    indices.insert(key, index);
}

const ChartReader::Places& ChartReader::places() const
{
    if (m_places)
        return *m_places;
    Places& now = m_places.emplace();
    const QList<TradeLevel>& levels = m_chart.tradeLevels();
    for (qsizetype i = 0; i < levels.size(); ++i)
        now.add({Kind::Level, levels.at(i).tradeId + u'/' + levels.at(i).kind}, i);
    const QList<Drawing>& drawings = m_chart.drawings();
    for (qsizetype i = 0; i < drawings.size(); ++i) {
        if (!speech::drawingName(drawings.at(i), m_chart.digits()).isEmpty())
            now.add({Kind::Drawing, identity(drawings.at(i))}, i);
    }
    if (!m_chart.autoScroll())
        now.add({Kind::EndButton, {}}, 0);
    return now;
}

QString ChartReader::markName(const ChartMarkKey& key) const
{
    return markName(m_chart.frame(), key);
}

QString ChartReader::markName(const ChartFrame& frame, const ChartMarkKey& key) const
{
    if (key.kind == Kind::EndButton)
        return QCoreApplication::translate("ChartWidget", "Scroll to the newest bar");
    const qsizetype index = markIndex(key);
    if (index < 0)
        return {};
    return key.kind == Kind::Level ? levelName(frame, index)
                                   : speech::drawingName(m_chart.drawings().at(index), m_chart.digits());
}

QAccessibleInterface* ChartReader::mark(const ChartMarkKey& key)
{
    return QAccessible::accessibleInterface(know(key).id);
}

ChartReader::Known& ChartReader::know(const ChartMarkKey& key)
{
    const auto known = m_known.find(key);
    if (known != m_known.end())
        return *known;
    QAccessibleInterface* mark = new ChartMark(m_chart, key);
    const QAccessible::Id id = QAccessible::registerAccessibleInterface(mark);
    return *m_known.insert(key, {id, markName(key)});
}

void ChartReader::noteMarks()
{
    m_places.reset();
    if (m_known.isEmpty() && !isReaderThere())
        return;
    const auto tell = [](QAccessible::Id id, QAccessible::Event kind) {
        QAccessibleEvent event(QAccessible::accessibleInterface(id), kind);
        tellReader(event);
    };
    // A reader may ask about other marks while it is told of one, so nothing is walked through meanwhile.
    const QList<ChartMarkKey> before = m_known.keys();
    for (const ChartMarkKey& key : before) {
        if (places().indices.contains(key))
            continue;
        const QAccessible::Id id = m_known.take(key).id;
        tell(id, QAccessible::ObjectDestroyed);
        QAccessible::deleteAccessibleInterface(id);
    }
    if (!isReaderThere())
        return;
    const QList<ChartMarkKey> now = marks();
    for (const ChartMarkKey& key : now) {
        if (!m_known.contains(key))
            tell(know(key).id, QAccessible::ObjectCreated);
    }
    m_news.note();
}

void ChartReader::noteSeen()
{
    if (std::exchange(m_unheard, false))
        m_news.note();
}

bool ChartReader::tellNews()
{
    m_unheard = m_chart.visibleRegion().isEmpty();
    if (m_unheard)
        return false;
    QList<QAccessible::Id> renamed;
    const ChartFrame frame = m_chart.frame();
    for (auto known = m_known.begin(); known != m_known.end(); ++known) {
        QString name = markName(frame, known.key());
        if (name == known->toldName)
            continue;
        known->toldName = std::move(name);
        renamed.append(known->id);
    }
    QString now = reading();
    const bool readsAnew = now != m_toldReading;
    m_toldReading = std::move(now);
    if (readsAnew)
        tellReader(m_chart, QAccessible::DescriptionChanged);
    for (const QAccessible::Id id : renamed) {
        if (QAccessibleInterface* mark = QAccessible::accessibleInterface(id)) {
            QAccessibleEvent event(mark, QAccessible::NameChanged);
            tellReader(event);
        }
    }
    return readsAnew || !renamed.isEmpty();
}
