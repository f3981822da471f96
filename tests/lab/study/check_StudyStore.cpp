#include "lab/Contains.h"
#include "lab/study/Sets.h"

#include "lab/core/study/StudyError.h"
#include "lab/core/study/StudyStore.h"
#include "practice/Check.h"
#include "practice/storage/TemporaryFolder.h"

#include <fstream>
#include <functional>
#include <limits>

using namespace lab;

namespace {

const StudyIdentity identity{{"the script", "a1"}, {"the prices", "b2"}};

std::string complaintOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const StudyError& error) {
        return error.what();
    }
    return "no complaint";
}

} // namespace

TEST_CASE("a result goes through a pipe as bytes and comes out the same")
{
    SetResult set = madeSet(77, 1.5);
    set.figures[3] = -0.0;
    set.figures[4] = std::numeric_limits<double>::denorm_min();
    const std::string bytes = bytesOf(set);
    CHECK(setResultFrom(bytes) == set);
    CHECK(setResultFrom(bytesOf(failedSet(3))) == failedSet(3));
    for (std::size_t size = 0; size < bytes.size(); size += 7)
        CHECK_THROWS(static_cast<void>(setResultFrom(std::string_view(bytes).substr(0, size))), StudyError);
    CHECK_THROWS(static_cast<void>(setResultFrom(bytes + "x")), StudyError);
}

TEST_CASE("what was put is there when the file is opened again")
{
    const TemporaryFolder folder;
    const auto file = folder / "s.sqlite";
    {
        StudyStore store = StudyStore::create(file, identity);
        store.put(madeSet(9, 1.25), {{"Fast", "5"}});
        store.put(failedSet(4), {});
        store.setNote("probe", "x");
    }
    StudyStore store = StudyStore::open(file);
    const std::vector<SetResult> results = store.results();
    CHECK_EQ(results.size(), 2U);
    CHECK(results.at(0) == failedSet(4));
    SetResult whole = results.at(1);
    whole.days = store.daysOf(9);
    CHECK(whole == madeSet(9, 1.25));
    CHECK(store.finished() == std::set<std::uint64_t>{9});
    CHECK_EQ(store.note("probe"), "x");
    CHECK_EQ(store.note("other"), "");
    store.put(madeSet(4, 2), {});
    CHECK_EQ(store.finished().size(), 2U);
}

TEST_CASE("runs are kept as the bytes that they are, the last one of a number")
{
    const TemporaryFolder folder;
    const auto file = folder / "s.sqlite";
    const std::string bytes("a\0\xFF'b", 5);
    {
        StudyStore store = StudyStore::create(file, identity);
        CHECK(store.runs().empty());
        store.putRun(7, "former");
        store.putRun(7, bytes);
        store.putRun(2, std::string());
    }
    const StudyStore store = StudyStore::open(file);
    CHECK((store.runs() == std::map<std::uint64_t, std::string>{{2, ""}, {7, bytes}}));
    CHECK(store.results().empty());
}

TEST_CASE("names of one and of many differ in their verb, too")
{
    CHECK_EQ(lab::differs("the script"), "the script differs");
    CHECK_EQ(lab::differs("the prices"), "the prices differ");
}

TEST_CASE("another script or other prices are noticed by name")
{
    const TemporaryFolder folder;
    const StudyStore store = StudyStore::create(folder / "s.sqlite", identity);
    CHECK_EQ(store.differenceTo(identity), "");
    CHECK_EQ(store.differenceTo({{"the script", "a1"}, {"the prices", "b3"}}), "the prices");
    CHECK_EQ(store.differenceTo({{"the sets", ""}}), "the sets");
}

TEST_CASE("a file whose making was cut short is blank, and no other")
{
    const TemporaryFolder folder;
    const auto file = folder / "s.sqlite";
    CHECK(!StudyStore::isBlank(file));
    std::ofstream(file).flush();
    CHECK(StudyStore::isBlank(file));
    std::ofstream(folder / "text") << std::string(4'096, 'x');
    CHECK(!StudyStore::isBlank(folder / "text"));
    const auto made = folder / "made.sqlite";
    static_cast<void>(StudyStore::create(made, identity));
    CHECK(!StudyStore::isBlank(made));
}

TEST_CASE("files that cannot be used are named")
{
    const TemporaryFolder folder;
    const auto file = folder / "s.sqlite";
    CHECK(contains(complaintOf([&] { static_cast<void>(StudyStore::open(file)); }), file.string()));
    {
        const StudyStore store = StudyStore::create(file, identity);
        CHECK(
            contains(complaintOf([&] { static_cast<void>(StudyStore::create(file, identity)); }), "already"));
        CHECK(contains(complaintOf([&] { static_cast<void>(StudyStore::open(file)); }), "another process"));
    }
    std::ofstream(folder / "text") << std::string(4'096, 'x');
    CHECK(contains(
        complaintOf([&] { static_cast<void>(StudyStore::open(folder / "text")); }), "not a database"));
    CHECK(contains(
        complaintOf([&] { static_cast<void>(StudyStore::create(folder / "no/s.sqlite", identity)); }),
        "no/s"));
}

CHECK_MAIN()
