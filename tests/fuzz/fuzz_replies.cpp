// Answers that are no lists (a sign-in, a refusal, public settings), and what becomes of a text of the server
// in an address. Then the server's drawings beside those of a chart: one line of JSON each.

#include "fuzz/FuzzQt.h"

#include "app/base/ServerText.h"
#include "chart/data/DrawingMerge.h"
#include "chart/data/DrawingRecords.h"
#include "net/UrlParts.h"
#include "net/records/ServerReply.h"

#include <QSet>
#include <QUrl>
#include <QUrlQuery>

using fuzz::demand;

namespace fuzz_replies {

namespace {

void readReply(const QJsonObject& body)
{
    const QString reason = shownReason(reply::message(body));
    demand(reason.size() <= 305 && reason.count(u'\n') < 4, "a reason is short");
    demand(reply::token(body).has_value() == body.contains(QStringLiteral("token")), "a token signs in");
    const QString email = shownName(reply::email(body));
    demand(fuzz::isOneLine(email) && email.size() <= 65, "a name is one short line");
    static_cast<void>(reply::serverUrl(body).size());
}

/// What stands in an address stays one segment and one value, whatever it is.
void address(const QString& text)
{
    QString sent = text;
    sent.removeIf([](QChar c) { return c.isSurrogate(); }); // a half of one cannot be sent
    const std::optional<QString> segment = encodePathSegment(sent);
    demand(
        segment.has_value() || sent.isEmpty() || sent == QStringLiteral(".") || sent == QStringLiteral(".."),
        "an id can be sent");
    if (!segment)
        return;
    const QString path = QStringLiteral("/api/trades/") + *segment + QStringLiteral("/end");
    demand(!hasDotSegment(path), "an id leads nowhere else");
    const QUrl url(QStringLiteral("http://desk") + path + QStringLiteral("?id=") + encodeQueryValue(sent)
            + QStringLiteral("&more=1"),
        QUrl::StrictMode);
    demand(url.isValid() && url.host() == QStringLiteral("desk"), "an id is no address of its own");
    demand(url.path(QUrl::FullyEncoded).count(u'/') == 4 && !url.hasFragment(), "an id is one segment");
    const QUrlQuery query(url);
    demand(query.queryItems().size() == 2, "a value is one value");
    demand(query.queryItemValue(QStringLiteral("id"), QUrl::FullyDecoded) == sent, "a value arrives");
}

void merge(const QList<Drawing>& stored, const QList<Drawing>& shown)
{
    const QList<Drawing> merged = mergeDrawings(stored, shown, {});
    demand(merged.size() >= stored.size() && merged.size() <= stored.size() + shown.size(),
        "nothing is made up, and nothing of the server's lost");
    for (qsizetype i = 0; i < stored.size(); ++i)
        demand(merged[i].id == stored[i].id, "the server's come first, in its order");
    QSet<QString> ids;
    for (const Drawing& drawing : stored)
        ids.insert(drawing.id);
    // Two with one id share what is selected.
    const bool haveIds = ids.size() == stored.size() && !ids.contains(QString());
    demand(!haveIds || mergeDrawings(stored, merged, {}) == merged, "once more changes nothing");
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    std::string_view text = fuzz::textOf(data, size);
    const QByteArray first = fuzz::bytesOf(fuzz::takeLine(text));
    const QJsonDocument document = QJsonDocument::fromJson(first);
    readReply(document.object());
    address(fuzz::stringOf({first.constData(), static_cast<std::size_t>(first.size())}));
    QList<Drawing> shown = readDrawings(QJsonDocument::fromJson(fuzz::bytesOf(text)));
    for (qsizetype i = 0; i < shown.size(); i += 2)
        shown[i].id.clear(); // was drawn here, and has not come from the server yet
    merge(readDrawings(document), shown);
    return 0;
}

const fuzz::Target target("replies", &attempt);

} // namespace

} // namespace fuzz_replies
