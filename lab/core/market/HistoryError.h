#pragma once

#include <stdexcept>

namespace lab {

/// Prices that cannot be had; what() is one line, with file and line where one of a file is to blame.
class HistoryError final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace lab
