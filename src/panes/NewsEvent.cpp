#include "panes/NewsEvent.h"

#include "app/base/ServerText.h"
#include "app/base/UtcTime.h"
#include "app/ui/Theme.h"
#include "net/records/JsonNumber.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QLocale>

using namespace Qt::StringLiterals;

namespace {

constexpr int usualNotifyMinutes = 15;
constexpr QColor mediumColor(0xff, 0xa7, 0x26);

QString tr(const char* text)
{
    return QCoreApplication::translate("NewsPane", text);
}

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
    const QJsonArray events = body.value("events"_L1).toArray();
    NewsReply reply;
    reply.notifyMinutes
        = jsonInt(body.value("settings"_L1).toObject().value("notifyMin"_L1), usualNotifyMinutes);
    for (const auto& value : events) {
        if (!value.isObject())
            continue;
        NewsEvent event;
        event.id = value["id"_L1].toString();
        event.time = clockText(value["eventTime"_L1].toString());
        event.minutesUntil = jsonInt(value["minutesUntil"_L1], 0);
        event.impact = shownName(value["impact"_L1].toString());
        event.currency = shownName(value["currency"_L1].toString());
        event.title = shownSentence(value["title"_L1].toString());
        reply.events.append(event);
    }
    return reply;
}

QString countdownText(int minutes)
{
    constexpr int minutesPerHour = 60;
    if (minutes < 0)
        return tr("now");
    if (minutes < minutesPerHour)
        return tr("%1m").arg(QString::number(minutes));
    return tr("%1h %2m").arg(
        QString::number(minutes / minutesPerHour), QString::number(minutes % minutesPerHour));
}

QColor impactColor(const QString& impact)
{
    if (impact == "HIGH"_L1)
        return FixedColors::lossRed;
    return impact == "MEDIUM"_L1 ? mediumColor : FixedColors::grey;
}

bool callsForWarning(const NewsEvent& event, int notifyMinutes)
{
    return event.impact == "HIGH"_L1 && event.minutesUntil >= 0 && event.minutesUntil <= notifyMinutes;
}
