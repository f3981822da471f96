#include "practice/server/ListeningPort.h"

#include "practice/server/Failure.h"

namespace practice {

namespace net = boost::asio;
using net::ip::tcp;

tcp::acceptor listenOn(net::io_context& context, const std::string& address, std::uint16_t port)
{
    try {
        const tcp::endpoint endpoint(net::ip::make_address(address), port);
        tcp::acceptor acceptor(context, endpoint.protocol());
        acceptor.set_option(net::socket_base::reuse_address(true));
        acceptor.bind(endpoint);
        acceptor.listen();
        return acceptor;
    } catch (const boost::system::system_error& error) {
        throw ListenError(
            "cannot listen on " + address + " port " + std::to_string(port) + ": " + error.code().message());
    }
}

} // namespace practice
