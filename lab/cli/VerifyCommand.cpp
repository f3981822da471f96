#include "lab/cli/Commands.h"
#include "lab/cli/DeafScript.h"
#include "lab/cli/RunScript.h"
#include "lab/cli/Screen.h"
#include "lab/cli/SessionSeats.h"
#include "lab/cli/StopSignal.h"
#include "lab/cli/VerdictText.h"
#include "lab/core/output/Texts.h"
#include "lab/core/session/SessionFile.h"
#include "lab/run/LatenessSearch.h"
#include "lab/run/RunWatch.h"
#include "lab/run/ScriptInputs.h"
#include "lab/run/SessionCheck.h"

#include <iostream>

namespace lab {

namespace {

std::string neverCalled(const SessionVerdict& verdict, const SessionSeat& seat)
{
    return "the script was never called: the session has " + std::to_string(verdict.prices)
        + (verdict.prices == 1 ? " price of " : " prices of ") + seat.symbol + ", up to "
        + isoTime(verdict.endedAt);
}

/// Nothing when somebody has stopped the program.
std::optional<SessionVerdict> follow(
    SessionFile& session, SessionCheck& check, const std::string& script, std::chrono::milliseconds limit)
{
    const RunWatch watch([&check] { check.interrupt(); }, &stopFlag(), limit, leaveDeafScript(script, limit));
    while (watch.verdict() == RunWatch::Verdict::None) {
        const std::optional<SessionEvent> event = session.next();
        if (!event || !check.take(*event))
            break;
    }
    if (stopStatus() != succeeded)
        return std::nullopt;
    if (watch.verdict() != RunWatch::Verdict::None)
        throw UsageError("the script was not at its end within --limit");
    return check.finish(session.isWhole());
}

} // namespace

int verifySession(Options options)
{
    const ExpertScript script = readScript(options.script);
    settleInputs(options.settings, script);
    const SessionSeat seat = chooseSeat(options);
    const ExpertScript changed = withInputs(script, options.settings.inputs);
    bool isWhole = false;
    const std::optional<SessionVerdict> verdict = searchLateness([&](const std::set<Delay>& late) {
        SessionFile session(options.session);
        SessionCheck check(session.start(), seat, changed, late);
        const auto followed = follow(session, check, script.name.toStdString(), options.limit);
        isWhole = session.isWhole();
        return followed;
    });
    if (!verdict)
        return stopStatus();
    if (!verdict->difference && verdict->calls == 0)
        throw UsageError(neverCalled(*verdict, seat));
    std::cout << verdictText(*verdict, seat, hasColours());
    if (!verdict->difference && !isWhole)
        std::cout << "The recording breaks off; its last line may be missing.\n";
    return verdict->difference ? fellShort : succeeded;
}

} // namespace lab
