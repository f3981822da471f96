#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/thread_pool.hpp>

#include <functional>
#include <string>

namespace practice {

/// Checks passwords on a thread of its own, one at a time, so that the slow hash never holds up prices.
class PasswordWorker final {
public:
    using Done = std::function<void(bool matches)>;

    /// `context` runs the answers.
    explicit PasswordWorker(boost::asio::io_context& context);
    ~PasswordWorker();
    PasswordWorker(const PasswordWorker&) = delete;
    PasswordWorker& operator=(const PasswordWorker&) = delete;

    /// False, and `done` is never called, when too many checks are waiting already.
    [[nodiscard]] bool check(std::string password, std::string hash, Done done);

    static constexpr int mostWaiting = 32;

private:
    boost::asio::io_context& m_context;
    int m_waiting = 0;
    boost::asio::thread_pool m_thread{1};
};

} // namespace practice
