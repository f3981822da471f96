#include "chart/window/DrawingStore.h"

#include "app/base/ServerText.h"
#include "chart/data/DrawingMerge.h"
#include "chart/data/DrawingRecords.h"
#include "chart/window/ChartWidget.h"
#include "net/ApiClient.h"
#include "net/ReadCoalescer.h"
#include "net/ReplyOutcome.h"
#include "net/UrlParts.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace {

QList<Drawing> withoutId(const QList<Drawing>& drawings)
{
    QList<Drawing> unsaved;
    for (const Drawing& drawing : drawings) {
        if (drawing.id.isEmpty())
            unsaved.append(drawing);
    }
    return unsaved;
}

} // namespace

DrawingStore::DrawingStore(
    ApiClient& api, ChartWidget& chart, const QString& symbol, const QString& accountId, QObject* parent)
    : QObject(parent)
    , m_api(api)
    , m_chart(chart)
    , m_reads(new ReadCoalescer(api, this))
    , m_symbol(symbol)
    , m_accountId(accountId)
{
    connect(&m_chart, &ChartWidget::drawingCreated, this, &DrawingStore::create);
    connect(&m_chart, &ChartWidget::drawingUpdated, this, &DrawingStore::update);
    connect(&m_chart, &ChartWidget::drawingDeleted, this, &DrawingStore::remove);
}

DrawingStore::~DrawingStore() = default;

void DrawingStore::setAccountId(const QString& accountId)
{
    if (accountId == m_accountId)
        return;
    scope().unsaved = withoutId(m_chart.drawings());
    m_accountId = accountId;
    m_chart.setDrawings(std::exchange(scope().unsaved, {}));
    load();
}

void DrawingStore::load()
{
    requestRead();
    readWhenQuiet();
}

void DrawingStore::requestRead()
{
    m_readWanted = true;
    ++m_generation;
}

QString DrawingStore::listPath() const
{
    QString path = "/api/drawings?symbol="_L1 + encodeQueryValue(m_symbol);
    if (!m_accountId.isEmpty())
        path += "&accountId="_L1 + encodeQueryValue(m_accountId);
    return path;
}

void DrawingStore::readWhenQuiet()
{
    if (!m_readWanted || scope().changing > 0)
        return;
    m_readWanted = false;
    m_reads->refresh(listPath(),
        [this, generation = m_generation, changes = scope().changes](
            const QJsonDocument& document, const QString& error) {
            if (generation != m_generation)
                return;
            if (changes == scope().changes) {
                take(document, error);
                return;
            }
            m_readWanted = true;
            readWhenQuiet();
        });
}

void DrawingStore::take(const QJsonDocument& document, const QString& error)
{
    if (!error.isEmpty()) {
        Q_EMIT failed(tr("%1: failed to load drawings: %2").arg(shownName(m_symbol), shownSentence(error)));
        return;
    }
    m_chart.setDrawings(
        mergeDrawings(readDrawings(document), m_chart.drawings(), std::exchange(scope().confirmed, {})));
}

void DrawingStore::create(const Drawing& drawing)
{
    track(m_api.post(u"/api/drawings"_s, createDrawingBody(drawing, m_symbol, m_accountId)),
        tr("failed to save the drawing"),
        [this, drawing, account = m_accountId](const ReplyOutcome& outcome, Scope& changed) {
            if (!outcome.ok)
                return;
            changed.confirmed.append(drawing);
            if (account == m_accountId)
                requestRead();
        });
}

void DrawingStore::update(const Drawing& drawing)
{
    if (const auto segment = encodePathSegment(drawing.id)) {
        track(m_api.put("/api/drawings/"_L1 + *segment, updateDrawingBody(drawing)),
            tr("failed to save the drawing"), {});
    }
}

void DrawingStore::remove(const QString& id)
{
    const auto segment = encodePathSegment(id);
    if (!segment)
        return;
    track(m_api.del("/api/drawings/"_L1 + *segment), tr("failed to delete the drawing"),
        [this, account = m_accountId](const ReplyOutcome& outcome, const Scope&) {
            // A server that has refused to delete the drawing still has it: show it again.
            if (!outcome.ok && outcome.status != 0 && account == m_accountId)
                requestRead();
        });
}

void DrawingStore::track(QNetworkReply* reply, const QString& what, Ended ended)
{
    ++scope().changing;
    ++scope().changes;
    ReplyOutcome::whenFinished(reply, this,
        [this, what, ended = std::move(ended), account = m_accountId](const ReplyOutcome& outcome) {
            Scope& changed = m_scopes[account];
            --changed.changing;
            if (!outcome.ok)
                Q_EMIT failed(u"%1: %2: %3"_s.arg(shownName(m_symbol), what, shownSentence(outcome.error)));
            if (ended)
                ended(outcome, changed);
            readWhenQuiet();
        });
}
