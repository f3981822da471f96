#pragma once

#include <cstddef>
#include <string>

/// What the faulty line reads and writes itself: messages of HTTP and frames of a feed, as bytes.
namespace faults {

/// The length of the first whole message with its body; 0 while it has not come whole.
[[nodiscard]] std::size_t wholeMessage(const std::string& bytes);
/// The length of its head, with the empty line behind it.
[[nodiscard]] std::size_t headLength(const std::string& message);
/// The length of the first whole frame that a server sends; 0 while it has not come whole.
[[nodiscard]] std::size_t wholeFrame(const std::string& bytes);

/// A head that names another length of the body.
[[nodiscard]] std::string withLength(const std::string& head, const std::string& length);

/// Somebody's web page, the answer that it makes, and any other ("502 Bad Gateway") with headers of its own.
[[nodiscard]] const std::string& htmlText();
[[nodiscard]] std::string htmlPage();
[[nodiscard]] std::string page(
    const std::string& status, const std::string& body, const std::string& headers = {});
/// The page of a server between, which has an error of its own.
[[nodiscard]] std::string errorPage(const std::string& status, const std::string& headers = {});

/// A small answer that unpacks to 64 MiB.
[[nodiscard]] std::string bombReply();
/// Makes it, so that no request waits for that.
void prepareBomb();

} // namespace faults
