#include "lab/cli/Commands.h"
#include "lab/cli/DeafScript.h"
#include "lab/cli/FigureList.h"
#include "lab/cli/PriceSources.h"
#include "lab/cli/Progress.h"
#include "lab/cli/ResultPlace.h"
#include "lab/cli/RunScript.h"
#include "lab/cli/Screen.h"
#include "lab/cli/StopSignal.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/output/Texts.h"
#include "lab/run/LabRun.h"

#include <iostream>

namespace lab {

int runOnce(Options options)
{
    const GivenRun given = readGivenRun(options);
    if (const int stopped = stopStatusAtOnce())
        return stopped;
    const std::string name = given.script.name.toStdString();
    if (options.out.empty()) {
        options.out = name + '-' + options.settings.symbol;
        checkResultPlace(options.out, ResultKind::Run);
    }

    const RunResult result = [&] {
        Progress progress(name);
        RunControl control;
        control.progress = [&progress](double done) { progress.show(done); };
        control.stop = &stopFlag();
        control.limit = options.limit;
        control.deaf = leaveDeafScript(name, options.limit);
        return LabRun(historiesAt(given.histories)).run(given.script, options.settings, control);
    }();
    const Figures figures = figuresOf(result);
    writeResult(options.out, result, figures, name);
    std::cout << figureList(result, figures, hasColours()) << '\n'
              << (options.out / "report.html").string() << '\n';
    if (const int stopped = stopStatus())
        return stopped;
    if (result.error) {
        std::cerr << "tavoran-lab: ended early, on " << minuteText(result.errorTime)
                  << " UTC: " << *result.error << '\n';
        return fellShort;
    }
    return succeeded;
}

} // namespace lab
