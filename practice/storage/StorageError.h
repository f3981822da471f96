#pragma once

#include <stdexcept>
#include <string>

namespace practice {

/// The database could not do what was asked; the text is one line a person can act on.
class StorageError : public std::runtime_error {
public:
    explicit StorageError(const std::string& text)
        : StorageError({}, text)
    {
    }
    /// The text tells the file first: whoever reads it knows which disk is meant.
    StorageError(const std::string& file, const std::string& reason)
        : std::runtime_error(file.empty() ? reason : file + ": " + reason)
        , m_reason(reason)
    {
    }
    /// The same without the file, for those who have no business with places on this machine.
    [[nodiscard]] const std::string& reason() const { return m_reason; }

private:
    std::string m_reason;
};

} // namespace practice
