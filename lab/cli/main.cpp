#include "experts/ScriptLimits.h"
#include "lab/cli/Program.h"
#include "lab/cli/StopSignal.h"

#include <QCoreApplication>
#include <QLocale>

#include <csignal>

namespace {

/// A result is the same wherever it is made: neither time zone nor language of the machine reaches a script
/// or a file. It must come before Qt looks at them.
void forgetThePlace()
{
    qputenv("TZ", "UTC");
    qputenv("LC_ALL", "C.UTF-8");
    qunsetenv("LANGUAGE");
    QLocale::setDefault(QLocale::c());
}

} // namespace

int main(int argc, char** argv)
{
    // The reader of our output may be gone, which is no reason to lose a result.
    std::signal(SIGPIPE, SIG_IGN);
    forgetThePlace();
    raiseScriptLimits();
    lab::watchStopSignals();
    // Qt has options of its own, which are none of this program.
    int nameAlone = argc > 0 ? 1 : 0;
    const QCoreApplication application(nameAlone, argv);
    return lab::runProgram({argv + nameAlone, argv + argc});
}
