#include "pixel/OwnProcessors.h"

#include "practice/Check.h"

#include <filesystem>
#include <string>
#include <thread>

#include <csignal>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// A process with two threads that do nothing; ends with this object.
class Idler final {
public:
    Idler()
    {
        int ends[2] = {};
        REQUIRE(pipe(ends) == 0);
        m_id = fork();
        if (m_id == 0) {
            std::thread second([] { pause(); });
            const char ready = 'r';
            const ssize_t written = write(ends[1], &ready, 1);
            if (written == 1)
                pause();
            _exit(0);
        }
        char ready = 0;
        REQUIRE(m_id > 0);
        REQUIRE(read(ends[0], &ready, 1) == 1);
        close(ends[0]);
        close(ends[1]);
    }
    ~Idler()
    {
        kill(m_id, SIGKILL);
        waitpid(m_id, nullptr, 0);
    }
    Idler(const Idler&) = delete;
    Idler& operator=(const Idler&) = delete;

    [[nodiscard]] pid_t id() const { return m_id; }
    /// Whether each of its threads may run on these processors and on no other.
    [[nodiscard]] bool runsOn(const cpu_set_t& wanted) const
    {
        int threads = 0;
        for (const auto& task :
            std::filesystem::directory_iterator("/proc/" + std::to_string(m_id) + "/task")) {
            cpu_set_t found;
            const pid_t thread = std::stoi(task.path().filename().string());
            if (sched_getaffinity(thread, sizeof found, &found) != 0 || !CPU_EQUAL(&found, &wanted))
                return false;
            ++threads;
        }
        return threads == 2;
    }

private:
    pid_t m_id = -1;
};

cpu_set_t ownSet()
{
    cpu_set_t set;
    CPU_ZERO(&set);
    static_cast<void>(sched_getaffinity(0, sizeof set, &set));
    return set;
}

int lastOf(const cpu_set_t& set)
{
    int last = CPU_SETSIZE - 1;
    while (last > 0 && !CPU_ISSET(last, &set))
        --last;
    return last;
}

TEST_CASE("the last processor is the others' alone, with all threads, and the program has the rest")
{
    cpu_set_t rest = ownSet();
    if (CPU_COUNT(&rest) < 2)
        check::skip("there is one processor here");
    const int last = lastOf(rest);
    CPU_CLR(last, &rest);
    cpu_set_t alone;
    CPU_ZERO(&alone);
    CPU_SET(last, &alone);
    const Idler program;
    const Idler server;
    const Idler other;
    CHECK(ownprocessors::separate(program.id(), {server.id(), other.id()}));
    CHECK(program.runsOn(rest));
    CHECK(server.runsOn(alone));
    CHECK(other.runsOn(alone));
}

TEST_CASE("with one processor nothing is changed, and it is told")
{
    const cpu_set_t before = ownSet();
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(lastOf(before), &one);
    REQUIRE(sched_setaffinity(0, sizeof one, &one) == 0);
    const Idler program;
    CHECK(!ownprocessors::separate(program.id(), {}));
    CHECK(program.runsOn(one));
    CHECK(sched_setaffinity(0, sizeof before, &before) == 0);
}

TEST_CASE("a process that is not there cannot be kept anywhere")
{
    const Idler program;
    CHECK(!ownprocessors::separate(0x7fffffff, {}));
    CHECK(!ownprocessors::separate(program.id(), {0x7fffffff}));
}

} // namespace

CHECK_MAIN()
