// A recorded session: read event by event, and followed by the broker, as `tavoran-lab verify` does it.

#include "fuzz/Files.h"

#include "lab/core/session/BrokerReplay.h"
#include "lab/core/session/SessionFile.h"
#include "lab/core/session/ToldAccount.h"

#include <optional>
#include <utility>

using fuzz::demand;

namespace fuzz_session {

namespace {

void follow(lab::SessionFile& session)
{
    std::optional<lab::BrokerReplay> broker(std::in_place, session.start());
    const auto& accounts = session.start().state.accounts;
    lab::ToldAccount told(accounts.empty() ? std::string() : accounts.front().id);
    practice::TimeMs last = session.start().time;
    while (const auto event = session.next()) {
        demand(session.lastTime() >= last, "the latest time goes on");
        last = session.lastTime();
        static_cast<void>(told.take(*event));
        static_cast<void>(told.equity());
        if (!broker)
            continue;
        if (const auto difference = broker->take(*event)) {
            demand(
                !difference->expected.empty() && !difference->recorded.empty(), "a difference has two sides");
            broker.reset();
        }
    }
    if (broker)
        static_cast<void>(broker->finish());
    demand(!session.next(), "the end stays the end");
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    static const fuzz::Folder folder;
    const std::filesystem::path file = folder.write("session.txt", fuzz::textOf(data, size));
    try {
        lab::SessionFile session(file);
        follow(session);
    } catch (const lab::SessionError& error) {
        demand(fuzz::namesLine(error.what(), file.string(), fuzz::textOf(data, size)),
            "a refusal is one line that names its line");
    }
    return 0;
}

const fuzz::Target target("session", &attempt);

} // namespace

} // namespace fuzz_session
