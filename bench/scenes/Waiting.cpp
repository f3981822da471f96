#include "scenes/Waiting.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

constexpr int patienceMs = 120'000;

} // namespace

void giveUp(const QString& why)
{
    std::fprintf(stderr, "%s\n", qUtf8Printable(why));
    std::exit(1);
}

void waitUntil(const std::function<bool()>& met, const QString& what)
{
    QElapsedTimer clock;
    clock.start();
    QTimer pulse;
    pulse.start(5);
    while (!met()) {
        if (clock.elapsed() > patienceMs)
            giveUp(u"waited in vain for "_s + what);
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}

void pauseFor(int milliseconds)
{
    bool over = false;
    QTimer::singleShot(milliseconds, qApp, [&over] { over = true; });
    waitUntil([&over] { return over; }, u"the time to pass"_s);
}
