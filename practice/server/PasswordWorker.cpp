#include "practice/server/PasswordWorker.h"

#include "practice/server/Credentials.h"

#include <boost/asio/post.hpp>

#include <utility>

namespace practice {

PasswordWorker::PasswordWorker(boost::asio::io_context& context)
    : m_context(context)
{
}

PasswordWorker::~PasswordWorker()
{
    m_thread.stop();
    m_thread.join();
}

bool PasswordWorker::check(std::string password, std::string hash, Done done)
{
    if (m_waiting >= mostWaiting)
        return false;
    ++m_waiting;
    boost::asio::post(m_thread,
        [this, password = std::move(password), hash = std::move(hash), done = std::move(done)]() mutable {
            const bool matches = passwordMatches(password, hash);
            boost::asio::post(m_context, [this, matches, done = std::move(done)] {
                --m_waiting;
                done(matches);
            });
        });
    return true;
}

} // namespace practice
