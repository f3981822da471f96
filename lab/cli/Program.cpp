#include "lab/cli/Program.h"

#include "lab/cli/Commands.h"
#include "lab/cli/Screen.h"

#include <cerrno>
#include <exception>
#include <iostream>
#include <new>
#include <system_error>

namespace lab {

namespace {

int carryOut(const Options& options)
{
    if (options.showHelp) {
        std::cout << helpText(options.command);
        return succeeded;
    }
    if (options.showVersion) {
        std::cout << "tavoran-lab " TAVORAN_VERSION "\n";
        return succeeded;
    }
    switch (options.command) {
    case Command::None:
        break;
    case Command::Inputs:
        return listInputs(options);
    case Command::Run:
        return runOnce(options);
    case Command::Report:
        return reportTrades(options);
    case Command::Compare:
        return compareResults(options);
    case Command::Check:
        return checkScript(options);
    case Command::Sweep:
        return sweepSets(options);
    case Command::Walk:
        return walkForward(options);
    case Command::Challenge:
        return challengePlan(options);
    case Command::Plan:
        return planChunks(options);
    case Command::Work:
        return workChunk(options);
    case Command::Merge:
        return mergeChunks(options);
    case Command::Verify:
        return verifySession(options);
    }
    return notPossible;
}

int complain(const std::string& text)
{
    tellError(text);
    return notPossible;
}

} // namespace

int runProgram(const std::vector<std::string>& arguments)
{
    try {
        const int status = carryOut(parseOptions(arguments));
        errno = 0;
        if (!std::cout.flush())
            return complain("cannot write to the standard output: " + std::generic_category().message(errno));
        return status;
    } catch (const std::bad_alloc&) {
        return complain("there is not enough memory for this");
    } catch (const std::exception& error) {
        return complain(error.what());
    }
}

} // namespace lab
