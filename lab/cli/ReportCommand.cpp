#include "lab/cli/Commands.h"
#include "lab/cli/FigureList.h"
#include "lab/cli/ResultPlace.h"
#include "lab/cli/Screen.h"
#include "lab/cli/TradeHistory.h"
#include "lab/core/figures/Figures.h"

#include <cerrno>
#include <fstream>
#include <iostream>
#include <iterator>
#include <system_error>

namespace lab {

namespace {

std::string contentOf(const std::filesystem::path& path)
{
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open() || file.bad())
        throw UsageError(
            "cannot read " + path.string() + ": " + std::generic_category().message(errno ? errno : EIO));
    return text;
}

} // namespace

int reportTrades(const Options& options)
{
    const std::filesystem::path& file = options.results.front();
    const std::string name = file.stem().string();
    const std::filesystem::path folder = options.out.empty() ? std::filesystem::path(name) : options.out;
    checkResultPlace(folder, ResultKind::Run);
    TradeHistoryWish wish{options.settings.symbol, {}};
    if (options.hasBalance)
        wish.balance = options.settings.balance;
    const RunResult result = resultOfTrades(contentOf(file), file.string(), wish);
    const Figures figures = figuresOf(result);
    writeResult(folder, result, figures, name);
    std::cout << figureList(result, figures, hasColours()) << '\n'
              << (folder / "report.html").string() << '\n';
    return succeeded;
}

} // namespace lab
