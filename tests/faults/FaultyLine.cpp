#include "faults/FaultyLine.h"

#include "faults/HttpFaultScript.h"
#include "faults/HttpMessages.h"
#include "faults/TlsFaultScript.h"

#include "practice/line/Line.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace faults {

namespace net = boost::asio;
using net::ip::tcp;
using practice::Line;

namespace {

// Ample for a write to a socket on loopback.
constexpr std::chrono::milliseconds soon{3};

/// Has the port, but does not listen: whoever connects is refused.
tcp::acceptor bound(net::io_context& context, quint16 port)
{
    const tcp::endpoint endpoint(net::ip::address_v4::loopback(), port);
    tcp::acceptor acceptor(context, endpoint.protocol());
    acceptor.set_option(net::socket_base::reuse_address(true));
    acceptor.bind(endpoint);
    return acceptor;
}

} // namespace

struct FaultyLine::Parts final {
    Parts(LineNews& news, quint16 serverPort, bool isEncrypted)
        : state{std::nullopt, news, [this] { refuse(); },
            [this](std::function<void()> work) { doSoon(std::move(work)); }, {}}
        , server(net::ip::address_v4::loopback(), serverPort)
        , encrypted(isEncrypted)
    {
        waiting.emplace(bound(context, 0));
        port = waiting->local_endpoint().port();
        listen();
        thread = std::thread([this] { context.run(); });
    }
    ~Parts()
    {
        context.stop();
        thread.join();
    }
    Q_DISABLE_COPY_MOVE(Parts)

    void onLine(const std::function<void()>& work)
    {
        std::promise<void> done;
        net::post(context, [&] {
            work();
            done.set_value();
        });
        done.get_future().wait();
    }
    void doSoon(std::function<void()> work)
    {
        auto timer = std::make_shared<net::steady_timer>(context, soon);
        timer->async_wait([timer, work = std::move(work)](boost::system::error_code error) {
            if (!error)
                work();
        });
    }
    void listen()
    {
        if (!waiting)
            return;
        waiting->listen();
        lines.push_back(std::make_unique<Line>(context, std::move(*waiting), server,
            [this](std::uint64_t) -> std::unique_ptr<practice::LineScript> {
                if (encrypted)
                    return std::make_unique<TlsFaultScript>(state);
                return std::make_unique<HttpFaultScript>(state);
            }));
        waiting.reset();
    }
    void refuse()
    {
        if (waiting)
            return;
        lines.back()->stop();
        waiting.emplace(bound(context, port));
    }

    LineState state; // first: the scripts of connections outlive the context's run
    net::io_context context{1};
    net::executor_work_guard<net::io_context::executor_type> staying = net::make_work_guard(context);
    tcp::endpoint server;
    const bool encrypted;
    std::optional<tcp::acceptor> waiting;
    std::vector<std::unique_ptr<Line>> lines; // the last one listens, unless one waits
    quint16 port = 0;
    std::thread thread;
};

FaultyLine::FaultyLine(quint16 serverPort, bool encrypted)
    : m_encrypted(encrypted)
    , m_parts(std::make_unique<Parts>(m_news, serverPort, encrypted))
{
}

FaultyLine::~FaultyLine() = default;

QString FaultyLine::url() const
{
    return QStringLiteral("%1://127.0.0.1:%2")
        .arg(m_encrypted ? QStringLiteral("https") : QStringLiteral("http"), QString::number(m_parts->port));
}

void FaultyLine::spoil(const Plan& plan)
{
    if (plan.fault == Fault::GzipBomb)
        prepareBomb();
    m_parts->onLine([this, &plan] {
        m_news.struck = 0;
        m_news.holding = false;
        m_parts->state.plan = plan;
        if (plan.fault == Fault::Refused && plan.moment == Moment::Connecting) {
            ++m_news.struck;
            m_parts->refuse();
        }
        const auto scripts = m_parts->state.scripts;
        for (HttpFaultScript* script : scripts)
            script->strikeIdle();
    });
}

void FaultyLine::mend()
{
    m_parts->onLine([this] {
        m_news.holding = false;
        m_parts->state.plan.reset();
        m_parts->listen();
    });
}

void FaultyLine::cutAll()
{
    m_parts->onLine([this] {
        for (const auto& line : m_parts->lines)
            line->cutAll();
    });
}

void FaultyLine::ping()
{
    net::post(m_parts->context, [this] { ++m_news.turns; });
}

} // namespace faults
