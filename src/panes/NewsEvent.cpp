#include "panes/NewsEvent.h"

#include "app/base/ServerText.h"
#include "app/base/UtcTime.h"
#include "app/ui/Theme.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

constexpr int usualNotifyMinutes = 15;
constexpr QColor mediumColor(0xff, 0xa7, 0x26);

struct Texts {
    Q_DECLARE_TR_FUNCTIONS(NewsPane)
};

QString clockText(const QString& iso)
{
    QDateTime time = QDateTime::fromString(iso, Qt::ISODateWithMs);
    if (time.isValid() && time.timeSpec() == Qt::LocalTime)
        time = utcTime(time.date(), time.time()); // a server's time without a zone
    return time.isValid() ? QLocale::c().toString(time.toLocalTime(), u"ddd HH:mm") : QString();
}

} // namespace

NewsReply NewsReply::read(const QJsonDocument& document)
{
    const QJsonObject body = document.object();
    const QJsonArray events = news::events(body);
    NewsReply reply;
    reply.notifyMinutes = news::notifyMinutes(body, usualNotifyMinutes);
    for (const QJsonValue value : events) {
        if (!value.isObject())
            continue;
        const QJsonObject record = value.toObject();
        NewsEvent event;
        event.id = news::id(record);
        event.time = clockText(news::time(record));
        event.minutesUntil = news::minutesUntil(record);
        event.impact = news::impact(record);
        event.impactText = shownName(news::impactText(record));
        event.currency = shownName(news::currency(record));
        event.title = shownSentence(news::title(record));
        reply.events.append(event);
    }
    return reply;
}

QString countdownText(int minutes)
{
    constexpr int minutesPerHour = 60;
    if (minutes < 0)
        //: in place of the time until an event
        return Texts::tr("now");
    if (minutes < minutesPerHour)
        //: minutes until an event
        return Texts::tr("%1m").arg(QString::number(minutes));
    //: hours and minutes until an event
    return Texts::tr("%1h %2m").arg(
        QString::number(minutes / minutesPerHour), QString::number(minutes % minutesPerHour));
}

QColor impactColor(Impact impact)
{
    switch (impact) {
    case Impact::High:
        return fixedColors::lossRed;
    case Impact::Medium:
        return mediumColor;
    case Impact::Low:
        break;
    }
    return fixedColors::grey;
}

bool callsForWarning(const NewsEvent& event, int notifyMinutes)
{
    return event.impact == Impact::High && event.minutesUntil >= 0 && event.minutesUntil <= notifyMinutes;
}
