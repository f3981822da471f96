#include "crash/SavedState.h"

#include "app/base/TerminalSettings.h"
#include "mainwindow/ChartsLayout.h"
#include "mainwindow/PanesLayout.h"
#include "panes/AlertBook.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace savedstate {

namespace {

enum Part { Email, Alerts, Layout, parts };

/// The last step up to `number` that saved this part; 0 when none has.
int lastOf(Part part, int number)
{
    while (number > 0 && number % parts != part)
        --number;
    return number;
}

QString emailOf(int step)
{
    return step > 0 ? u"trader%1@b.example"_s.arg(step) : QString();
}

QList<PriceAlert> alertsOf(int step)
{
    QList<PriceAlert> alerts;
    const int count = step > 0 ? 1 + step % 17 : 0;
    for (int i = 0; i < count; ++i)
        alerts.append({u"SYMBOL%1"_s.arg(i), i % 2 == 0, step + i / 100.0, i % 3 == 0});
    return alerts;
}

QString textOf(const QList<PriceAlert>& alerts)
{
    AlertBook book;
    for (const PriceAlert& alert : alerts)
        book.add(alert);
    return book.toJson();
}

/// Bytes that are told apart from those of any other step.
QByteArray bytesOf(int step, int size)
{
    QByteArray bytes;
    auto random = static_cast<quint32>(step);
    while (bytes.size() < size) {
        random = random * 1'664'525U + 1'013'904'223U;
        bytes.append(static_cast<char>(random >> 24));
    }
    return bytes;
}

QByteArray geometryOf(int step)
{
    return bytesOf(step, 66);
}

QByteArray stateOf(int step)
{
    return bytesOf(step + 1, 300 + step % 5 * 100);
}

/// More charts and fewer, so that files grow and shrink.
QString chartsOf(int step)
{
    QList<SavedChart> charts;
    const int count = 1 + step % 9;
    for (int i = 0; i < count; ++i) {
        charts.append({u"EURUSD %1"_s.arg(step), u"15m"_s, bytesOf(step + i, 66), i == 0,
            QJsonObject{{u"step"_s, step}, {u"template"_s, u"Ünïcode \"quoted\"; = [%1]\n"_s.arg(i)}}});
    }
    return chartsLayoutText(charts);
}

PanesLayout panesOf(int step)
{
    return {{{u"marketWatch"_s, {14, {step % 1000 + 1, 80, 70}}}}, u"page %1"_s.arg(step), bytesOf(step, 40)};
}

/// The step whose charts these are; -1 for what is no layout.
int stepOf(const QString& chartsText)
{
    const QList<SavedChart> charts = readChartsLayout(chartsText);
    return charts.isEmpty() ? -1 : charts.first().state["step"_L1].toInt(-1);
}

} // namespace

bool save(TerminalSettings& settings, int number)
{
    switch (number % parts) {
    case Email:
        settings.setEmail(emailOf(number));
        break;
    case Alerts:
        settings.setAlerts(textOf(alertsOf(number)));
        break;
    default:
        settings.setWindowLayout(geometryOf(number), stateOf(number));
        settings.setChartsLayout(chartsOf(number));
        settings.setPanesLayout(panesLayoutText(panesOf(number)));
    }
    return settings.sync();
}

Found read(const TerminalSettings& settings)
{
    static const QRegularExpression digits(u"^trader(\\d+)@"_s);
    const int email = settings.email().isEmpty() ? 0 : digits.match(settings.email()).captured(1).toInt();
    const QList<PriceAlert> alerts = AlertBook::fromJson(settings.alerts()).alerts();
    const int alert = alerts.isEmpty() ? 0 : static_cast<int>(alerts.first().price);
    const int layout = settings.chartsLayout().isEmpty() ? 0 : stepOf(settings.chartsLayout());

    const int number = std::max({email, alert, layout});
    Found found{number, {}};
    const auto tell = [&found](const char* what) {
        found.fault += (found.fault.isEmpty() ? u""_s : u", "_s) + QString::fromLatin1(what);
    };
    if (email != lastOf(Email, number) || settings.email() != emailOf(email))
        tell("e-mail address");
    if (alert != lastOf(Alerts, number) || alerts != alertsOf(alert))
        tell("alerts");
    if (layout != lastOf(Layout, number)) {
        tell("layout");
    } else if (layout > 0) {
        if (settings.chartsLayout() != chartsOf(layout))
            tell("charts");
        if (settings.windowGeometry() != geometryOf(layout) || settings.windowState() != stateOf(layout))
            tell("window");
        if (readPanesLayout(settings.panesLayout()) != panesOf(layout))
            tell("panes");
    }
    return found;
}

} // namespace savedstate
