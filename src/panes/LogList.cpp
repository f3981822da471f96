#include "panes/LogList.h"

#include "app/base/ServerText.h"
#include "app/ui/LetterSize.h"
#include "panes/FittingDelegate.h"
#include "panes/RowKeys.h"

#include <QDateTime>
#include <QHeaderView>
#include <QScrollBar>
#include <QTimerEvent>

using namespace Qt::StringLiterals;

namespace {

// Laying out a million rows takes some 40 ms: one ms of pause for each 2000 rows keeps that below a
// tenth of the time, and a list of ordinary length is up to date within the same turn.
constexpr int rowsPerPauseMs = 2000;

// There are a handful of source names. Beyond this many they are somebody's data, and not worth sharing.
constexpr int mostSources = 256;

enum LogColumn { Time, Source, Message };

// Keeps the bare values; texts exist only while a row is painted.
class LogItem final : public QTreeWidgetItem {
public:
    LogItem(LogList::Clock clock, const QString& source, const QString& message)
        : QTreeWidgetItem(UserType + int(clock))
        , m_time(QDateTime::currentMSecsSinceEpoch())
        , m_source(source)
        , m_message(message)
    {
    }

    [[nodiscard]] QVariant data(int column, int role) const override
    {
        if (role != Qt::DisplayRole)
            return {};
        switch (column) {
        case Time:
            return QDateTime::fromMSecsSinceEpoch(m_time).toString(format());
        case Source:
            return m_source;
        case Message:
            return m_message;
        default:
            return {};
        }
    }

private:
    [[nodiscard]] QStringView format() const
    {
        const bool fine = type() == UserType + int(LogList::Clock::Milliseconds);
        return fine ? u"yyyy.MM.dd HH:mm:ss.zzz" : u"yyyy.MM.dd HH:mm:ss";
    }

    qint64 m_time;
    QString m_source;
    QString m_message;
};

} // namespace

LogList::LogList(Clock clock, QWidget* parent)
    : QTreeWidget(parent)
    , m_clock(clock)
{
    setHeaderLabels({tr("Time"),
        //: the part of the program that a line comes from
        tr("Source"), tr("Message")});
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    ::setColumnWidth(*this, Time, 140);
    setItemDelegateForColumn(Time, new FittingDelegate(this)); // the end of a time tells most
    ::setColumnWidth(*this, Source, 110);
    new RowKeys(*this, Source); // the list's own child
    header()->setStretchLastSection(true);
}

void LogList::append(const QString& source, const QString& message)
{
    QString shared = shownSentence(source);
    if (const auto known = m_sources.constFind(shared); known != m_sources.cend())
        shared = *known;
    else if (m_sources.size() < mostSources)
        m_sources.insert(shared);
    QString line = shownEntry(message);
    line.squeeze();
    addTopLevelItem(new LogItem(m_clock, shared, line));
}

// Deliberately past QTreeView, whose own version lays out all rows again.
void LogList::rowsInserted(const QModelIndex& parent, int start, int end)
{
    QAbstractItemView::rowsInserted(parent, start, end); // NOLINT(bugprone-parent-virtual-call): see above
    m_behind = true;
    if (isVisible() && !m_layoutTimer.isActive())
        m_layoutTimer.start(topLevelItemCount() / rowsPerPauseMs, this);
}

void LogList::doItemsLayout()
{
    m_isUnlaid = !isVisible();
    if (!m_isUnlaid)
        QTreeWidget::doItemsLayout();
}

void LogList::showEvent(QShowEvent* event)
{
    QTreeWidget::showEvent(event);
    if (m_isUnlaid && !m_behind)
        doItemsLayout();
    showNewest();
}

void LogList::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_layoutTimer.timerId()) {
        QTreeWidget::timerEvent(event);
        return;
    }
    m_layoutTimer.stop();
    if (isVisible())
        showNewest();
}

void LogList::showNewest()
{
    if (!m_behind)
        return;
    m_behind = false;
    doItemsLayout();
    scrollToBottom();
}
