#pragma once

#include <exception>
#include <stdexcept>
#include <string>

namespace practice {

/// The server cannot listen where it was told to; the text names the place and the reason.
class ListenError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// How the program ends.
struct Failure {
    int exitCode;
    std::string text; ///< one line for a person
};

/// 2 when the arguments, a file or the port cannot be used; 1 for a fault of the program or the machine.
[[nodiscard]] Failure describeFailure(const std::exception_ptr& fault);

} // namespace practice
