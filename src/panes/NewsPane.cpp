#include "panes/NewsPane.h"

#include "app/ui/LetterSize.h"
#include "panes/KeptRows.h"
#include "panes/NewsEvent.h"
#include "panes/RowKeys.h"

#include <QHeaderView>
#include <QScrollBar>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int refreshMs = 120000;
constexpr int newsBalloonMs = 15000;
enum NewsColumn { TimeColumn, CurrencyColumn, ImpactColumn, EventColumn, InColumn };

} // namespace

NewsPane::NewsPane(ApiClient& api, QWidget* parent)
    : QWidget(parent)
    , m_reads(api)
    , m_list(new QTreeWidget(this))
{
    m_list->setObjectName("newsList"_L1);
    m_list->setAccessibleName(tr("Calendar"));
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setHeaderLabels({tr("Time"), tr("Currency"), tr("Impact"), tr("Event"),
        //: how long until the event
        tr("In")});
    setColumnWidth(*m_list, TimeColumn, 130);
    setColumnWidth(*m_list, CurrencyColumn, 70);
    setColumnWidth(*m_list, ImpactColumn, 70);
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(EventColumn, QHeaderView::Stretch);
    new RowKeys(*m_list, EventColumn); // the list's own child
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);

    auto* timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &NewsPane::refresh);
    timer->start(refreshMs);
}

void NewsPane::refresh()
{
    m_reads.refresh(u"/api/news/upcoming"_s, [this](const QJsonDocument& document, const QString& error) {
        if (error.isEmpty())
            onReply(document);
    });
}

void NewsPane::onReply(const QJsonDocument& document)
{
    const NewsReply news = NewsReply::read(document);
    fill(news);
    announce(news);
}

void NewsPane::fill(const NewsReply& news)
{
    QList<QTreeWidgetItem*> rows;
    rows.reserve(news.events.size());
    for (const NewsEvent& event : news.events) {
        auto* row = new QTreeWidgetItem(
            {event.time, event.currency, event.impactText, event.title, countdownText(event.minutesUntil)});
        row->setData(TimeColumn, Qt::UserRole, event.id);
        row->setForeground(ImpactColumn, impactColor(event.impact));
        rows.append(row);
    }
    const auto idOf
        = [this](int row) { return m_list->topLevelItem(row)->data(TimeColumn, Qt::UserRole).toString(); };
    const KeptRows kept = KeptRows::of(*m_list, idOf);
    const int place = m_list->verticalScrollBar()->value();
    m_list->clear();
    m_list->addTopLevelItems(rows);
    kept.restore(*m_list, idOf);
    m_list->verticalScrollBar()->setValue(place); // the current row may be out of sight
}

void NewsPane::announce(const NewsReply& news)
{
    for (const NewsEvent& event : news.events) {
        if (!callsForWarning(event, news.notifyMinutes) || m_notified.contains(event.id))
            continue;
        m_notified.insert(event.id);
        Q_EMIT balloonWanted({tr("Upcoming News — %1").arg(event.currency),
            //: %1 the event
            tr("%1 in %2 minutes", nullptr, event.minutesUntil)
                .arg(event.title, QString::number(event.minutesUntil)),
            Balloon::Kind::Warning, newsBalloonMs});
    }
}
