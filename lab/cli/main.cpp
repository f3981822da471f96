#include "experts/ScriptLimits.h"
#include "lab/cli/Program.h"
#include "lab/cli/StopSignal.h"

#include <QCoreApplication>
#include <QLocale>

#include <atomic>
#include <csignal>
#include <cstdio>

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

/// What a script writes to the console, and whatever Qt has to say; a script that never stops fills no disk.
void writeLine(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    constexpr int most = 1000;
    static std::atomic<int> lines = 0;
    const int line = lines < most + 2 ? ++lines : most + 2;
    if (line <= most || type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(qFormatLogMessage(type, context, text)));
    else if (line == most + 1)
        std::fputs("further lines of the console are left out\n", stderr);
}

} // namespace

int main(int argc, char** argv)
{
    // The reader of our output may be gone, which is no reason to lose a result.
    std::signal(SIGPIPE, SIG_IGN);
    // So that a limit of file sizes is an error of writing like any other.
    std::signal(SIGXFSZ, SIG_IGN);
    qInstallMessageHandler(writeLine);
    forgetThePlace();
    raiseScriptLimits();
    lab::watchStopSignals();
    // Qt has options of its own, which are none of this program.
    int nameAlone = argc > 0 ? 1 : 0;
    const QCoreApplication application(nameAlone, argv);
    return lab::runProgram({argv + nameAlone, argv + argc});
}
