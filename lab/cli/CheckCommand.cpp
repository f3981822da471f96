#include "lab/cli/Commands.h"
#include "lab/cli/DeafScript.h"
#include "lab/cli/FigureList.h"
#include "lab/cli/PriceSources.h"
#include "lab/cli/Progress.h"
#include "lab/cli/ResultPlace.h"
#include "lab/cli/RunScript.h"
#include "lab/cli/Screen.h"
#include "lab/cli/SelfCheck.h"
#include "lab/cli/StopSignal.h"
#include "lab/core/figures/Figures.h"
#include "lab/core/market/RunSpan.h"
#include "lab/run/LabRun.h"

#include <iostream>
#include <utility>

namespace lab {

namespace {

/// Ends the checks: a run was stopped.
struct Stopped { };

/// The runs of one script over the same prices, one after the other.
class Runner {
public:
    Runner(const Options& options, ExpertScript script, const std::vector<MinuteHistory>& histories)
        : m_script(std::move(script))
        , m_history(histories.front())
        , m_settings(options.settings)
        , m_limit(options.limit)
        , m_lab(historiesAt(histories))
    {
    }

    [[nodiscard]] RunResult run(const RunSettings& settings)
    {
        Progress progress(
            "Run " + std::to_string(++m_count) + " of at most " + std::to_string(mostCheckRuns));
        RunControl control;
        control.progress = [&progress](double done) { progress.show(done); };
        control.stop = &stopFlag();
        control.limit = m_limit;
        control.deaf = leaveDeafScript(m_script.name.toStdString(), m_limit);
        RunResult result = m_lab.run(m_script, settings, control);
        if (stopFlag())
            throw Stopped{};
        return result;
    }

    [[nodiscard]] std::optional<practice::TimeMs> startAfter(int warmupBars) const
    {
        RunSettings settings = m_settings;
        settings.from.reset();
        settings.warmupBars = warmupBars;
        try {
            return m_history.timeAt(spanOf(m_history, settings).firstMinute);
        } catch (const HistoryError&) {
            return std::nullopt;
        }
    }

private:
    ExpertScript m_script;
    const MinuteHistory& m_history;
    RunSettings m_settings;
    std::chrono::milliseconds m_limit;
    LabRun m_lab;
    int m_count = 0;
};

void tell(const CheckVerdict& verdict, bool colours)
{
    constexpr std::size_t textColumn = 28;
    std::string name = verdict.name;
    name.resize(12, ' ');
    const auto [word, tone] = [&verdict]() -> std::pair<std::string, Tone> {
        switch (verdict.outcome) {
        case CheckVerdict::Outcome::Holds:
            return {"holds         ", Tone::Good};
        case CheckVerdict::Outcome::NotComparable:
            return {"not comparable", Tone::Warning};
        case CheckVerdict::Outcome::Fails:
            break;
        }
        return {"FAILS         ", Tone::Bad};
    }();
    std::cout << name << toned(word, tone, colours) << "  ";
    for (const char c : wrapped(verdict.text, 80 - textColumn, {})) {
        std::cout << c;
        if (c == '\n')
            std::cout << std::string(textColumn, ' ');
    }
    std::cout << std::endl;
}

/// For the report.
std::string warningOf(const CheckVerdict& verdict)
{
    const bool fails = verdict.outcome == CheckVerdict::Outcome::Fails;
    return (fails ? "Check failed (" : "Check without anything to compare (") + verdict.name
        + "): " + verdict.text;
}

} // namespace

int checkScript(Options options)
{
    const GivenRun given = readGivenRun(options);
    if (const int stopped = stopStatusAtOnce())
        return stopped;
    Runner runner(options, given.script, given.histories);
    const CheckRuns runs{[&runner](const RunSettings& settings) { return runner.run(settings); },
        [&runner](int bars) { return runner.startAfter(bars); }};
    const bool colours = hasColours();
    bool allHold = true;
    try {
        RunResult base = runner.run(options.settings);
        if (base.error) {
            std::cerr << "tavoran-lab: ended early: " << *base.error << '\n';
            return fellShort;
        }
        std::vector<std::string> failures;
        for (const Check check : allChecks()) {
            const CheckVerdict verdict = check(runs, base);
            tell(verdict, colours);
            allHold = allHold && verdict.holds();
            if (!verdict.holds())
                failures.push_back(warningOf(verdict));
        }
        if (!options.out.empty()) {
            base.warnings.insert(base.warnings.begin(), failures.begin(), failures.end());
            const Figures figures = figuresOf(base);
            writeResult(options.out, base, figures, given.script.name.toStdString());
            std::cout << '\n' << (options.out / "report.html").string() << '\n';
        }
    } catch (const Stopped&) {
        std::cout << "stopped; what is above was found out\n";
        return stopStatus();
    }
    return allHold ? succeeded : fellShort;
}

} // namespace lab
