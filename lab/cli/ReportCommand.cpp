#include "lab/cli/Commands.h"
#include "lab/cli/FigureList.h"
#include "lab/cli/ResultPlace.h"
#include "lab/cli/Screen.h"
#include "lab/cli/TradeHistory.h"
#include "lab/core/figures/Figures.h"
#include "practice/core/FileContent.h"

#include <iostream>

namespace lab {

int reportTrades(const Options& options)
{
    const std::filesystem::path& file = options.results.front();
    const std::string name = file.stem().string();
    const std::filesystem::path folder = options.out.empty() ? std::filesystem::path(name) : options.out;
    checkResultPlace(folder, ResultKind::Run);
    TradeHistoryWish wish{options.settings.symbol, {}};
    if (options.hasBalance)
        wish.balance = options.settings.balance;
    const RunResult result = resultOfTrades(practice::contentOr<UsageError>(file), file.string(), wish);
    const Figures figures = figuresOf(result);
    writeResult(folder, result, figures, name);
    std::cout << figureList(result, figures, hasColours()) << '\n'
              << (folder / "report.html").string() << '\n';
    return succeeded;
}

} // namespace lab
