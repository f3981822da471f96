#include "ResultPlace.h"
#include "lab/GoneProcess.h"
#include "lab/core/output/ResultFolder.h"
#include "practice/Check.h"

#include <csignal>
#include <fstream>
#include <map>
#include <sstream>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace lab;
using Place = samples::ResultPlace;
namespace fs = std::filesystem;

namespace {

/// Name and content of everything in the folder, hidden files too.
std::map<std::string, std::string> contentOf(const fs::path& folder)
{
    std::map<std::string, std::string> content;
    for (const auto& entry : fs::directory_iterator(folder)) {
        std::ostringstream text;
        if (entry.is_regular_file())
            text << std::ifstream(entry.path(), std::ios::binary).rdbuf();
        content[entry.path().filename().string()] = text.str();
    }
    return content;
}

using Content = std::map<std::string, std::string>;

std::string messageOf(ResultFolder& folder)
{
    try {
        folder.commit();
    } catch (const OutputError& error) {
        return error.what();
    }
    return {};
}

/// Files get no longer than this, as on a full disk.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &m_former);
        rlimit limit = m_former;
        limit.rlim_cur = bytes;
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    SizeLimit(const SizeLimit&) = delete;
    SizeLimit& operator=(const SizeLimit&) = delete;
    ~SizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_former);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_former{};
    void (*m_handler)(int) = nullptr;
};

} // namespace

TEST_CASE("all files are written, folders on the way too")
{
    const Place place;
    const fs::path target = place.path() / "a" / "b";
    ResultFolder folder(target);
    folder.add("one.txt", "1\n");
    folder.add("two.txt", std::string(300'000, 'x'));
    folder.add("one.txt", "first\n");
    CHECK(!fs::exists(target));
    folder.commit();
    CHECK(contentOf(target) == Content({{"one.txt", "first\n"}, {"two.txt", std::string(300'000, 'x')}}));
}

TEST_CASE("former results are replaced, other files stay")
{
    const Place place;
    std::ofstream(place.path() / "one.txt") << "old";
    std::ofstream(place.path() / "notes.txt") << "mine";
    ResultFolder folder(place.path());
    folder.add("one.txt", "new");
    folder.commit();
    CHECK(contentOf(place.path()) == Content({{"notes.txt", "mine"}, {"one.txt", "new"}}));
}

TEST_CASE("what killed processes have left on their way goes with the next result")
{
    const Place place;
    const pid_t gone = goneProcess();
    const std::string here = machineName();
    const auto write = [&](const std::string& name) {
        std::ofstream(place.path() / name) << "half";
        return name;
    };
    CHECK(holdsNothing(place.path()));
    write(draftName("one.txt", here, gone) + ".new");
    write(draftName("two.txt", here, gone) + ".old");
    CHECK(holdsNothing(place.path()));
    // Of others, who are still at it, are elsewhere, or are persons.
    Content stays;
    for (const std::string& name : {draftName("one.txt", here, ::getppid()) + ".new",
             draftName("one.txt", "another-" + here, gone) + ".new",
             draftName("three.txt", here, gone) + ".new", draftName("one.txt", here, gone) + ".new.kept",
             draftName("one.txt", here, gone), std::string(".one.txt.new"), std::string(".new")})
        stays[write(name)] = "half";
    CHECK(!holdsNothing(place.path()));

    ResultFolder folder(place.path());
    folder.add("one.txt", "1");
    folder.add("two.txt", "2");
    folder.commit();
    stays["one.txt"] = "1";
    stays["two.txt"] = "2";
    CHECK(contentOf(place.path()) == stays);
    CHECK(!holdsNothing(place.path() / "no such folder"));
}

TEST_CASE("a full disk leaves former results and nothing of the new ones")
{
    const Place place;
    std::ofstream(place.path() / "one.txt") << "old";
    ResultFolder folder(place.path());
    folder.add("one.txt", "new");
    folder.add("two.txt", std::string(100'000, 'x'));
    std::string message;
    {
        const SizeLimit limit(50'000);
        message = messageOf(folder);
    }
    CHECK_EQ(message, "cannot write " + (place.path() / "two.txt").string() + ": File too large");
    CHECK(contentOf(place.path()) == Content({{"one.txt", "old"}}));
}

TEST_CASE("a folder that was made for nothing goes again")
{
    const Place place;
    ResultFolder folder(place.path() / "a" / "b");
    folder.add("two.txt", std::string(100'000, 'x'));
    {
        const SizeLimit limit(50'000);
        CHECK(!messageOf(folder).empty());
    }
    CHECK(contentOf(place.path()).empty());
}

TEST_CASE("what cannot be put into place takes the others back with it")
{
    const Place place;
    std::ofstream(place.path() / "one.txt") << "old";
    fs::create_directory(place.path() / "two.txt");
    ResultFolder folder(place.path());
    folder.add("one.txt", "new");
    folder.add("two.txt", "new");
    folder.add("zero.txt", "new");
    CHECK_EQ(messageOf(folder), "cannot write " + (place.path() / "two.txt").string() + ": Is a directory");
    CHECK(contentOf(place.path()) == Content({{"one.txt", "old"}, {"two.txt", ""}}));
}

TEST_CASE("who may read and write a result is for the mask to say")
{
    const Place place;
    ResultFolder folder(place.path());
    folder.add("one.txt", "new");
    const mode_t former = ::umask(0);
    folder.commit();
    ::umask(former);
    using fs::perms;
    CHECK(fs::status(place.path() / "one.txt").permissions()
        == (perms::owner_read | perms::owner_write | perms::group_read | perms::group_write
            | perms::others_read | perms::others_write));
}

TEST_CASE("a disk that is really full tells so")
{
    const Place place;
    if (::mount("tmpfs", place.path().c_str(), "tmpfs", 0, "size=65536") != 0)
        check::skip("nothing can be mounted here");
    std::ofstream(place.path() / "one.txt") << "old";
    ResultFolder folder(place.path());
    folder.add("one.txt", "new");
    folder.add("two.txt", std::string(100'000, 'x'));
    CHECK_EQ(messageOf(folder),
        "cannot write " + (place.path() / "two.txt").string() + ": No space left on device");
    CHECK(contentOf(place.path()) == Content({{"one.txt", "old"}}));
    ::umount(place.path().c_str());
}

TEST_CASE("a folder that may not be written to is told in one line")
{
    const Place place;
    const bool isRoot = ::geteuid() == 0;
    fs::permissions(place.path(),
        fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read | fs::perms::others_exec);
    ResultFolder folder(place.path());
    folder.add("one.txt", "new");
    if (isRoot) // who may write everywhere
        CHECK_EQ(::seteuid(65'534), 0);
    const std::string message = messageOf(folder);
    if (isRoot)
        CHECK_EQ(::seteuid(0), 0);
    CHECK_EQ(message, "cannot write " + (place.path() / "one.txt").string() + ": Permission denied");
    CHECK(contentOf(place.path()).empty());
}

TEST_CASE("a file in the folder's place is told in one line")
{
    const Place place;
    std::ofstream(place.path() / "file") << "mine";
    ResultFolder folder(place.path() / "file");
    folder.add("one.txt", "new");
    CHECK_EQ(messageOf(folder), "cannot write " + (place.path() / "file").string() + ": Not a directory");
    CHECK(contentOf(place.path()) == Content({{"file", "mine"}}));
}

TEST_CASE("a place where nobody can write is told in one line")
{
    ResultFolder folder("/proc/tavoran-lab-result");
    folder.add("one.txt", "new");
    CHECK_EQ(messageOf(folder), "cannot write /proc/tavoran-lab-result: No such file or directory");
}

TEST_CASE("only plain names are files of a result")
{
    ResultFolder folder("anywhere");
    CHECK_THROWS(folder.add("", ""), OutputError);
    CHECK_THROWS(folder.add("..", ""), OutputError);
    CHECK_THROWS(folder.add("../one.txt", ""), OutputError);
}

CHECK_MAIN()
