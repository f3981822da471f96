// All bytes of one connection to the platform: requests that its real handlers carry out on a real database,
// or a feed. Two traders have accounts, positions, orders and drawings. The token of the first one is
// "first"; that of the second one is the word that stands in all that is only the second one's, and no input
// holds it. Nothing may reach that trader without it, and no answer may tell of that trader.

#include "fuzz/Answers.h"
#include "fuzz/Desk.h"

using fuzz::demand;

namespace fuzz_connection {

namespace {

int attempt(const std::uint8_t* data, std::size_t size)
{
    static const fuzz::Folder folder;
    static boost::asio::io_context context(1);
    static practice::PasswordWorker passwords(context);
    static const std::filesystem::path prepared = fuzz::preparedDatabase(folder);
    const std::filesystem::path file = folder.path() / "desk.db";
    for (const char* side : {"", "-wal", "-shm"})
        std::filesystem::remove(file.string() + side);
    std::filesystem::copy_file(prepared, file);

    const std::string_view text = fuzz::textOf(data, size);
    const std::size_t end = fuzz::endOfFeedRequest(text);
    fuzz::Desk desk(context, passwords, file);
    const std::string second(fuzz::secondWord);
    const fuzz::Belongings before = desk.belongingsOf(second);
    const std::string answer = desk.answerTo(text.substr(0, end), text.substr(end));
    fuzz::demandAnswers(text, answer);
    demand(desk.stored() == desk.live(), "what has changed is stored");
    if (text.find(second) != std::string_view::npos)
        return 0;
    demand(desk.belongingsOf(second) == before, "nobody reaches another trader's account");
    fuzz::demandNothingOf(before, answer);
    return 0;
}

constexpr std::size_t longest = 2 * practice::longestHeader + practice::longestBody;
// An input reaches so many places that weighing them would take longer by far than the connection does.
const fuzz::Target target("connection", &attempt, longest, "-entropic=0");

} // namespace

} // namespace fuzz_connection
