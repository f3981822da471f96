#pragma once

#include <stdexcept>

namespace lab {

/// A study cannot be made, or not go on; what() is one line for a person.
class StudyError final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace lab
