#pragma once

#include <stdexcept>

namespace lab {

/// What was asked for cannot be done; the text is one line for a person.
class UsageError final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace lab
