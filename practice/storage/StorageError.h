#pragma once

#include <stdexcept>

namespace practice {

/// The database could not do what was asked; the text is one line a person can act on.
class StorageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace practice
