#include "lab/cli/StudyOptionReaders.h"

#include "lab/cli/NearName.h"
#include "lab/cli/OptionValues.h"
#include "lab/cli/Options.h"
#include "lab/cli/Screen.h"
#include "lab/core/study/Grid.h"
#include "lab/core/study/SortFigure.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace lab {

namespace {

constexpr std::uint64_t mostSeeds = 100'000;

std::uint64_t number(std::string_view what, const std::string& text, std::uint64_t least, std::uint64_t most)
{
    const auto value = wholeNumber(text, least, most);
    if (!value)
        throw UsageError(std::string(what) + " takes a whole number from " + std::to_string(least) + " to "
            + std::to_string(most) + ", not \"" + text + '"');
    return *value;
}

practice::TimeMs length(std::string_view what, const std::string& text)
{
    const std::string_view digits = std::string_view(text).substr(0, text.empty() ? 0 : text.size() - 1);
    const auto count = wholeNumber(digits, 1, 10'000);
    const char unit = text.empty() ? ' ' : text.back();
    if (!count || (unit != 'd' && unit != 'w'))
        throw UsageError(std::string(what) + " takes days or weeks such as 90d or 12w, not \"" + text + '"');
    return static_cast<practice::TimeMs>(*count) * practice::dayMs * (unit == 'w' ? 7 : 1);
}

} // namespace

void readRandom(Options& options, const std::string& text)
{
    options.study.random = number("--random", text, 1, mostSets);
}

void readJobs(Options& options, const std::string& text)
{
    options.study.jobs = static_cast<std::size_t>(number("--jobs", text, 1, 1'000));
}

void readSort(Options& options, const std::string& text)
{
    const std::vector<std::string_view> keys = sortKeys();
    if (std::ranges::find(keys, text) == keys.end()) {
        std::string names;
        for (const std::string_view key : keys)
            names.append(names.empty() ? "" : ", ").append(key);
        const std::string near = suggestion(text, keys);
        throw UsageError("--sort takes a figure's key, not \"" + text + '"' + (near.empty() ? ":" : near)
            + "\n  " + wrapped(names, screenWidth - 3, "  "));
    }
    options.study.sort = text;
}

void readMinTrades(Options& options, const std::string& text)
{
    options.study.minTrades = number("--min-trades", text, 0, 1'000'000);
}

void readMemory(Options& options, const std::string& text)
{
    options.study.memoryMb = number("--memory", text, 512, 1'000'000);
}

void readResume(Options& options, const std::string&)
{
    options.study.resume = true;
}

void readTrain(Options& options, const std::string& text)
{
    options.study.train = length("--train", text);
}

void readTest(Options& options, const std::string& text)
{
    options.study.test = length("--test", text);
}

void readAnchored(Options& options, const std::string&)
{
    options.study.isAnchored = true;
}

void readStarts(Options& options, const std::string& text)
{
    if (text != "daily")
        throw UsageError("--starts takes daily, not \"" + text + '"');
    options.study.daily = true;
}

void readSeeds(Options& options, const std::string& text)
{
    const std::size_t dots = text.find("..");
    const auto first = wholeNumber(std::string_view(text).substr(0, dots));
    const auto last
        = dots == std::string::npos ? first : wholeNumber(std::string_view(text).substr(dots + 2));
    if (dots == std::string::npos || !first || !last || *last < *first || *last - *first >= mostSeeds)
        throw UsageError("--seeds takes FIRST..LAST such as 1..200, at most " + std::to_string(mostSeeds)
            + " of them, not \"" + text + '"');
    options.study.seeds = {*first, *last};
}

void readChunks(Options& options, const std::string& text)
{
    options.study.chunks = number("--chunks", text, 1, 100'000);
}

void takePlan(Options& options, const std::string& word)
{
    if (options.study.plan.empty())
        options.study.plan = word;
    else if (options.command == Command::Work && options.study.chunk == 0)
        options.study.chunk = number("work", word, 1, 100'000);
    else
        throw UsageError("one plan at a time, not also \"" + word + '"');
}

void checkStudy(const Options& options)
{
    const StudyOptions& study = options.study;
    switch (options.command) {
    case Command::Walk:
        if (study.train == 0 || study.test == 0)
            throw UsageError("walk needs --train and --test, such as --train 90d --test 30d");
        break;
    case Command::Challenge:
        if (study.daily == study.seeds.has_value())
            throw UsageError("challenge needs either --starts daily or --seeds FIRST..LAST");
        if (study.seeds && !options.data.empty())
            throw UsageError("--seeds goes with simulated prices only, not with --data");
        break;
    case Command::Plan:
        if (study.chunks == 0)
            throw UsageError("plan needs --chunks, in how many parts the sets go");
        break;
    case Command::Work:
        if (study.plan.empty() || study.chunk == 0)
            throw UsageError("work needs a plan and the number of a chunk");
        break;
    case Command::Merge:
        if (study.plan.empty())
            throw UsageError("merge needs a plan");
        break;
    default:
        break;
    }
}

} // namespace lab
