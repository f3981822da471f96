#include "lab/Contains.h"

#include "lab/core/study/StudyError.h"
#include "lab/core/study/WorkerPool.h"
#include "practice/Check.h"

#include <csignal>
#include <map>
#include <stdexcept>
#include <unistd.h>
#include <vector>

using namespace lab;
using namespace std::chrono_literals;

namespace {

using Results = std::map<std::size_t, JobResult>;

Results resultsOf(std::size_t count, const Work& work, const WorkerSettings& settings)
{
    Results results;
    const bool isWhole = runJobs(
        count, work,
        [&](JobResult result) {
            const std::size_t job = result.job;
            CHECK(results.emplace(job, std::move(result)).second);
        },
        settings);
    CHECK(isWhole);
    return results;
}

WorkerSettings withWorkers(std::size_t workers)
{
    WorkerSettings settings;
    settings.workers = workers;
    return settings;
}

} // namespace

TEST_CASE("every job has its own result, whatever the number of workers")
{
    const Work work
        = [](std::size_t job) { return std::string(job * 1'000, static_cast<char>('a' + job % 26)); };
    for (const std::size_t workers : {1U, 2U, 4U, 100U}) {
        const Results results = resultsOf(60, work, withWorkers(workers));
        CHECK_EQ(results.size(), 60U);
        for (const auto& [job, result] : results) {
            CHECK(!result.failure);
            CHECK(result.bytes == work(job));
        }
    }
    CHECK_EQ(resultsOf(0, work, withWorkers(2)).size(), 0U);
}

TEST_CASE("jobs run in other processes, as many as there are workers")
{
    const auto results = resultsOf(
        20,
        [](std::size_t) {
            ::usleep(5'000);
            return std::to_string(::getpid());
        },
        withWorkers(2));
    std::map<std::string, int> processes;
    for (const auto& [job, result] : results)
        ++processes[result.bytes];
    CHECK_EQ(processes.size(), 2U);
    CHECK(!processes.contains(std::to_string(::getpid())));
}

TEST_CASE("a job that crashes, leaves or throws costs itself alone")
{
    const Work work = [](std::size_t job) -> std::string {
        if (job == 3)
            std::raise(SIGSEGV);
        if (job == 5)
            ::_exit(7);
        if (job == 7)
            throw std::runtime_error("no such\nthing");
        if (job == 9)
            std::raise(SIGKILL);
        return "good";
    };
    for (const std::size_t workers : {1U, 3U}) {
        const Results results = resultsOf(12, work, withWorkers(workers));
        CHECK_EQ(results.size(), 12U);
        for (const auto& [job, result] : results) {
            const bool isBad = job == 3 || job == 5 || job == 7 || job == 9;
            CHECK_EQ(result.failure.has_value(), isBad);
            CHECK_EQ(result.bytes, isBad ? "" : "good");
        }
        CHECK(contains(results.at(3).failure.value_or(""), "signal 11"));
        CHECK(contains(results.at(5).failure.value_or(""), "status 7"));
        CHECK_EQ(results.at(7).failure.value_or(""), "no such thing");
        CHECK(contains(results.at(9).failure.value_or(""), "signal 9"));
    }
}

TEST_CASE("a job that does not end is killed after limit and grace")
{
    WorkerSettings settings = withWorkers(2);
    settings.limit = 100ms;
    settings.grace = 100ms;
    const auto begin = std::chrono::steady_clock::now();
    const Results results = resultsOf(
        4,
        [](std::size_t job) -> std::string {
            while (job == 1)
                ::pause();
            return "good";
        },
        settings);
    CHECK(std::chrono::steady_clock::now() - begin >= 200ms);
    CHECK_EQ(results.at(1).failure.value_or(""), "not at its end after 0.1 seconds");
    CHECK_EQ(results.at(3).bytes, "good");
}

#if !defined(__SANITIZE_ADDRESS__)
TEST_CASE("a job that wants too much memory is refused it")
{
    WorkerSettings settings = withWorkers(1);
    settings.memoryBytes = 64'000'000;
    const Results results = resultsOf(
        3,
        [](std::size_t job) {
            std::string much(job == 1 ? 200'000'000U : 1'000'000U, 'x');
            return much.substr(much.size() - 4);
        },
        settings);
    CHECK_EQ(results.at(0).bytes, "xxxx");
    CHECK_EQ(results.at(1).failure.value_or(""), "there is not enough memory");
    CHECK_EQ(results.at(2).bytes, "xxxx");
}
#endif

TEST_CASE("stopped it ends its workers and keeps what has come")
{
    std::atomic<bool> stop = false;
    WorkerSettings settings = withWorkers(2);
    settings.stop = &stop;
    std::vector<JobResult> results;
    const bool isWhole = runJobs(
        100,
        [](std::size_t job) -> std::string {
            while (job >= 10)
                ::pause();
            return "good";
        },
        [&](JobResult result) {
            results.push_back(std::move(result));
            stop = results.size() == 10;
        },
        settings);
    CHECK(!isWhole);
    CHECK_EQ(results.size(), 10U);
}

TEST_CASE("an error while results are taken ends the workers and is passed on")
{
    CHECK_THROWS(static_cast<void>(runJobs(
                     10, [](std::size_t) { return std::string("x"); },
                     [](const JobResult&) { throw StudyError("the disk is full"); }, withWorkers(2))),
        StudyError);
}

CHECK_MAIN()
