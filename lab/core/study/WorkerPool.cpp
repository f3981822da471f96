#include "lab/core/study/WorkerPool.h"

#include "lab/core/output/Texts.h"
#include "lab/core/study/StudyError.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <fstream>
#include <memory>
#include <new>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace lab {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t longestReason = 500;
/// Nobody returns that much; a worker that says so has gone mad.
constexpr std::uint64_t mostBytes = std::uint64_t{1} << 32;

/// What comes before the bytes of a result.
struct Header {
    std::uint64_t failed = 0;
    std::uint64_t size = 0;
};

/// Reads or writes until all bytes are through; false where an end or an error comes before.
template <typename Transfer, typename Byte>
bool transferAll(const Transfer& transfer, int place, Byte* bytes, std::size_t size)
{
    while (size > 0) {
        const ssize_t count = transfer(place, bytes, size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        bytes += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

bool writeAll(int place, const void* data, std::size_t size)
{
    return transferAll(::write, place, static_cast<const char*>(data), size);
}

bool readAll(int place, void* data, std::size_t size)
{
    return transferAll(::read, place, static_cast<char*>(data), size);
}

/// A pipe's ends, closed at the end.
class Pipe {
public:
    Pipe()
    {
        if (::pipe(m_ends) != 0)
            throw StudyError("cannot make a pipe: " + std::generic_category().message(errno));
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe()
    {
        closeEnd(0);
        closeEnd(1);
    }
    [[nodiscard]] int readEnd() const { return m_ends[0]; }
    [[nodiscard]] int writeEnd() const { return m_ends[1]; }
    void closeRead() { closeEnd(0); }
    void closeWrite() { closeEnd(1); }

private:
    void closeEnd(int number)
    {
        if (m_ends[number] >= 0)
            ::close(std::exchange(m_ends[number], -1));
    }

    int m_ends[2]{-1, -1};
};

std::uint64_t addressSpace()
{
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

/// In the worker: no core files, no more memory than this, no life without the one who gives the work.
void settleIn(const WorkerSettings& settings, pid_t parent)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent)
        ::_exit(0);
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGTERM, SIG_DFL);
    const rlimit none{0, 0};
    ::setrlimit(RLIMIT_CORE, &none);
    if (settings.memoryBytes > 0) {
        const rlim_t most = addressSpace() + settings.memoryBytes;
        rlimit limit{};
        if (::getrlimit(RLIMIT_AS, &limit) == 0
            && (limit.rlim_cur == RLIM_INFINITY || limit.rlim_cur > most)) {
            limit.rlim_cur = most;
            ::setrlimit(RLIMIT_AS, &limit);
        }
    }
}

std::pair<bool, std::string> outcomeOf(const Work& work, std::size_t job)
{
    try {
        return {true, work(job)};
    } catch (const std::bad_alloc&) {
        return {false, "there is not enough memory"};
    } catch (const std::exception& error) {
        return {false, error.what()};
    } catch (...) {
        return {false, "an unknown error"};
    }
}

[[noreturn]] void serve(const Work& work, int jobs, int results)
{
    std::uint64_t job = 0;
    while (readAll(jobs, &job, sizeof job)) {
        const auto [isGood, bytes] = outcomeOf(work, static_cast<std::size_t>(job));
        const Header header{isGood ? 0U : 1U, bytes.size()};
        if (!writeAll(results, &header, sizeof header) || !writeAll(results, bytes.data(), bytes.size()))
            break;
    }
    ::_exit(0);
}

/// A forked process with a job in hand, or none. It is killed with this object.
class Worker {
public:
    Worker(
        const Work& work, const WorkerSettings& settings, const std::vector<std::unique_ptr<Worker>>& others)
    {
        const pid_t parent = ::getpid();
        m_pid = ::fork();
        if (m_pid < 0)
            throw StudyError("cannot start a worker: " + std::generic_category().message(errno));
        if (m_pid == 0) {
            // Whoever keeps another one's pipe open keeps it from seeing the end.
            for (const auto& other : others)
                other->closePipes();
            m_jobs.closeWrite();
            m_results.closeRead();
            settleIn(settings, parent);
            serve(work, m_jobs.readEnd(), m_results.writeEnd());
        }
        m_jobs.closeRead();
        m_results.closeWrite();
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;
    ~Worker() { static_cast<void>(end()); }

    void give(std::size_t job)
    {
        const std::uint64_t number = job;
        m_job = job;
        m_begin = Clock::now();
        // Where that fails the worker is gone, and its silence will say so.
        static_cast<void>(writeAll(m_jobs.writeEnd(), &number, sizeof number));
    }
    [[nodiscard]] const std::optional<std::size_t>& job() const { return m_job; }
    [[nodiscard]] Clock::duration busyFor() const
    {
        return m_job ? Clock::now() - m_begin : Clock::duration{};
    }
    [[nodiscard]] int place() const { return m_results.readEnd(); }

    /// Takes in what has come; false when the worker is gone.
    [[nodiscard]] bool listen()
    {
        char chunk[65'536];
        const ssize_t count = ::read(place(), chunk, sizeof chunk);
        if (count < 0)
            return errno == EINTR;
        m_bytes.append(chunk, static_cast<std::size_t>(count));
        return count > 0 && (m_bytes.size() < sizeof(Header) || header().size <= mostBytes);
    }
    /// The result, as soon as it is there.
    [[nodiscard]] std::optional<JobResult> result()
    {
        if (!m_job || m_bytes.size() < sizeof(Header) || m_bytes.size() - sizeof(Header) < header().size)
            return std::nullopt;
        JobResult result{*m_job, m_bytes.substr(sizeof(Header)), std::nullopt};
        if (header().failed != 0)
            result.failure = shortened(std::exchange(result.bytes, {}), longestReason);
        m_bytes.clear();
        m_job.reset();
        return result;
    }
    /// Kills it and says how it ended: 0 and more are exit statuses, others signals.
    int end()
    {
        if (m_pid <= 0)
            return 0;
        ::kill(m_pid, SIGKILL);
        int status = 0;
        while (::waitpid(m_pid, &status, 0) < 0 && errno == EINTR) { }
        m_pid = -1;
        return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
    }
    /// One that has closed its pipe is about to end by itself; how is worth waiting for.
    int waitFor()
    {
        for (int tries = 0; tries < 500; ++tries) {
            int status = 0;
            if (::waitpid(m_pid, &status, WNOHANG) == m_pid) {
                m_pid = -1;
                return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
            }
            ::usleep(2'000);
        }
        return end();
    }

private:
    void closePipes()
    {
        m_jobs.closeWrite();
        m_results.closeRead();
    }
    [[nodiscard]] Header header() const
    {
        Header header;
        std::memcpy(&header, m_bytes.data(), sizeof header);
        return header;
    }

    Pipe m_jobs;
    Pipe m_results;
    pid_t m_pid = -1;
    std::optional<std::size_t> m_job;
    Clock::time_point m_begin;
    std::string m_bytes;
};

std::string endingText(int ending)
{
    if (ending >= 0)
        return "its process ended with status " + std::to_string(ending);
    return "its process was ended by signal " + std::to_string(-ending) + " (" + ::strsignal(-ending) + ')';
}

/// All workers of a study.
class Pool {
public:
    Pool(std::size_t count, const Work& work, const std::function<void(JobResult)>& take,
        const WorkerSettings& settings)
        : m_count(count)
        , m_work(work)
        , m_take(take)
        , m_settings(settings)
    {
    }

    bool run()
    {
        while (m_done < m_count) {
            if (m_settings.stop && m_settings.stop->load())
                return false;
            fill();
            wait();
        }
        return true;
    }

private:
    void fill()
    {
        const std::size_t wanted = std::min(std::max<std::size_t>(1, m_settings.workers), m_count - m_done);
        while (m_workers.size() < wanted && m_next < m_count) {
            try {
                m_workers.push_back(std::make_unique<Worker>(m_work, m_settings, m_workers));
            } catch (const StudyError&) {
                if (m_workers.empty())
                    throw;
                break; // fewer have to do
            }
        }
        for (const auto& worker : m_workers) {
            if (!worker->job() && m_next < m_count)
                worker->give(m_next++);
        }
    }

    void wait()
    {
        std::vector<pollfd> places;
        for (const auto& worker : m_workers)
            places.push_back({worker->place(), POLLIN, 0});
        const bool hasNews = ::poll(places.data(), places.size(), 50) > 0;
        for (std::size_t i = places.size(); i-- > 0;) {
            Worker& worker = *m_workers[i];
            if (hasNews && places[i].revents != 0 && !hear(worker))
                m_workers.erase(m_workers.begin() + static_cast<std::ptrdiff_t>(i));
            else if (isTooLate(worker)) {
                worker.end();
                fail(worker,
                    "not at its end after "
                        + shortestText(static_cast<double>(m_settings.limit.count()) / 1000) + " seconds");
                m_workers.erase(m_workers.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
    }

    bool hear(Worker& worker)
    {
        const bool isThere = worker.listen();
        if (std::optional<JobResult> result = worker.result()) {
            ++m_done;
            m_take(*std::move(result));
        }
        if (!isThere)
            fail(worker, endingText(worker.waitFor()));
        return isThere;
    }

    void fail(const Worker& worker, const std::string& reason)
    {
        if (!worker.job())
            return;
        ++m_done;
        m_take({*worker.job(), {}, reason});
    }

    [[nodiscard]] bool isTooLate(const Worker& worker) const
    {
        return m_settings.limit.count() > 0 && worker.job()
            && worker.busyFor() > m_settings.limit + m_settings.grace;
    }

    std::size_t m_count;
    const Work& m_work;
    const std::function<void(JobResult)>& m_take;
    const WorkerSettings& m_settings;
    std::vector<std::unique_ptr<Worker>> m_workers;
    std::size_t m_next = 0;
    std::size_t m_done = 0;
};

} // namespace

bool runJobs(std::size_t count, const Work& work, const std::function<void(JobResult)>& take,
    const WorkerSettings& settings)
{
    return Pool(count, work, take, settings).run();
}

} // namespace lab
