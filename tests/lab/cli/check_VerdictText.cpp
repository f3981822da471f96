#include "lab/cli/VerdictText.h"
#include "practice/Check.h"

namespace {

const lab::SessionSeat seat{"EURUSD", practice::Timeframe::M15, "one", {}, {}};

bool contains(const std::string& text, const std::string& part)
{
    return text.find(part) != std::string::npos;
}

} // namespace

TEST_CASE("what is taken to have been late is told with its time")
{
    lab::SessionVerdict verdict;
    verdict.orders = 1;
    CHECK(!contains(lab::verdictText(verdict, seat, false), "Late "));
    verdict.taken = {{1'750'000'499'950, lab::Late::Price}, {1'750'000'500'200, lab::Late::News}};
    const std::string text = lab::verdictText(verdict, seat, false);
    CHECK(contains(text,
        "Late      2 moments at which the terminal was behind the platform\n"
        "  2025-06-15T15:14:59.950Z  a price just before the end of a bar, seen in the next one\n"
        "  2025-06-15T15:15:00.200Z  a price just after news of the account, seen before it\n"));
    CHECK(contains(text, "\nNo divergence\n"));
}

TEST_CASE("of many that were late twenty are told")
{
    lab::SessionVerdict verdict;
    for (int i = 0; i < 25; ++i)
        verdict.taken.insert({i, lab::Late::News});
    const std::string text = lab::verdictText(verdict, seat, false);
    CHECK(contains(text, "00.019Z"));
    CHECK(!contains(text, "00.020Z"));
    CHECK(contains(text, "  and 5 more\n"));
}

CHECK_MAIN()
