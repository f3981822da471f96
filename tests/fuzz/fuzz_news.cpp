// The economic calendar.

#include "fuzz/FuzzQt.h"

#include "panes/NewsEvent.h"

using fuzz::demand;

namespace fuzz_news {

namespace {

int attempt(const std::uint8_t* data, std::size_t size)
{
    const QByteArray json = fuzz::bytesOf(fuzz::textOf(data, size));
    const NewsReply reply = NewsReply::read(QJsonDocument::fromJson(json));
    for (const NewsEvent& event : reply.events) {
        demand(event.time.isEmpty() || event.time.size() == 9, "a time is like Fri 13:30");
        for (const QString& name : {event.impactText, event.currency})
            demand(fuzz::isOneLine(name) && name.size() <= 65, "a name is one short line");
        demand(fuzz::isOneLine(event.title) && event.title.size() <= 301, "a title is one line");
        const QString countdown = countdownText(event.minutesUntil);
        demand(!countdown.isEmpty() && countdown.size() <= 16, "a countdown is short");
        demand(!callsForWarning(event, reply.notifyMinutes) || event.impact == Impact::High,
            "only the important is announced");
        demand(impactColor(event.impact).isValid(), "each impact has a colour");
    }
    return 0;
}

const fuzz::Target target("news", &attempt);

} // namespace

} // namespace fuzz_news
