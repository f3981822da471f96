#include "practice/Check.h"

#include "lab/cli/RunScript.h"
#include "lab/cli/StudyBench.h"
#include "lab/cli/UsageError.h"

using lab::RunSettings;
using namespace Qt::StringLiterals;

namespace {

const ExpertScript script{u"Break"_s, u"Break.js"_s,
    u"var Channel = 20;\nvar Mode = 'fast';\nvar side = 0;\nfunction OnTick() { side = 1; }\n"_s};

/// What a single run, and what a study, says to an input that was given.
std::string refusal(const std::string& name, const std::string& value, bool studies = false)
{
    RunSettings settings;
    settings.inputs = {{name, value}};
    try {
        if (studies)
            static_cast<void>(lab::gridOf(script, settings));
        else
            lab::settleInputs(settings, script);
    } catch (const lab::UsageError& error) {
        return error.what();
    }
    return {};
}

} // namespace

TEST_CASE("an input that is nearly right is answered with the right one")
{
    const std::string meant = "The script has no input Channels; it has Channel, Mode; did you mean Channel?";
    CHECK_EQ(refusal("Channels", "3"), meant);
    CHECK_EQ(refusal("Channels", "3,4", true), meant);
}

TEST_CASE("another one is answered with those that are meant to be set")
{
    CHECK_EQ(refusal("Lots", "3"), "The script has no input Lots; it has Channel, Mode");
    CHECK_EQ(refusal("Lots", "3", true), "The script has no input Lots; it has Channel, Mode");
    CHECK_EQ(refusal("side", "1"), "");
}

TEST_CASE("a range is referred to the commands that take one")
{
    const std::string number = "Channel must be a number, such as 20, and not ";
    const std::string hint = "; ranges and lists of values are for sweep, walk and plan";
    CHECK_EQ(refusal("Channel", "20:40:10"), number + "20:40:10" + hint);
    CHECK_EQ(refusal("Channel", "2,-4.5"), number + "2,-4.5" + hint);
    CHECK_EQ(refusal("Channel", "x:y"), number + "x:y");
    CHECK_EQ(refusal("Channel", "much"), number + "much");
    CHECK_EQ(refusal("Mode", "2:3:1"), "");
    CHECK_EQ(refusal("Channel", "2,4", true), "");
    CHECK_EQ(refusal("Channel", "x,2", true), number + "x");
}

CHECK_MAIN()
