// The plan of a sweep, as other machines get it.

#include "fuzz/Files.h"

#include "lab/cli/PlanFile.h"
#include "lab/core/study/StudyError.h"

using fuzz::demand;

namespace fuzz_plan {

namespace {

int attempt(const std::uint8_t* data, std::size_t size)
{
    static const fuzz::Folder folder;
    const std::filesystem::path file = folder.write("plan.json", fuzz::textOf(data, size));
    std::optional<lab::PlanFile> plan;
    try {
        plan = lab::readPlan(file);
    } catch (const lab::StudyError& error) {
        const std::string_view what = error.what();
        demand(fuzz::isOneLine(what) && what.starts_with(file.string()) && what.size() > file.string().size(),
            "a refusal is one line that names its file");
        return 0;
    }
    demand(plan->chunks >= 1 && plan->chunks <= plan->sets, "each chunk has sets");
    demand(plan->span(1).first == 0 && plan->span(plan->chunks).second == plan->sets,
        "the chunks have all sets");
    const std::uint64_t middle = plan->chunks / 2 + 1;
    demand(plan->span(middle).first < plan->span(middle).second, "no chunk is empty");
    if (middle < plan->chunks)
        demand(plan->span(middle).second == plan->span(middle + 1).first, "chunks follow each other");
    const std::filesystem::path written = folder.write("written.json", lab::planText(*plan, file));
    const lab::PlanFile again = lab::readPlan(written);
    demand(again.sets == plan->sets && again.chunks == plan->chunks && again.identity == plan->identity
            && again.script.text == plan->script.text && again.options.data == plan->options.data,
        "a plan comes back as it was written");
    return 0;
}

const fuzz::Target target("plan", &attempt);

} // namespace

} // namespace fuzz_plan
