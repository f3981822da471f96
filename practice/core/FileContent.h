#pragma once

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace practice {

/// Opens a file to be read. Where that cannot be done, `reason` is what the system says of it: "No such file
/// or directory".
inline std::ifstream openToRead(const std::filesystem::path& path, std::string& reason)
{
    errno = 0;
    std::ifstream file(path, std::ios::binary);
    const int number = errno;
    std::error_code ignored;
    if (!file)
        reason = std::generic_category().message(number == 0 ? EIO : number);
    else if (std::filesystem::is_directory(path, ignored))
        reason = std::generic_category().message(EISDIR);
    return file;
}

/// All of a file. Where it cannot be read, `reason` is what the system says of it.
inline std::string contentOf(const std::filesystem::path& path, std::string& reason)
{
    std::ifstream file = openToRead(path, reason);
    if (!reason.empty())
        return {};
    errno = 0;
    std::string content;
    std::array<char, 65'536> part{};
    while (file.read(part.data(), part.size()) || file.gcount() > 0)
        content.append(part.data(), static_cast<std::size_t>(file.gcount()));
    if (!file.eof() || file.bad())
        reason = std::generic_category().message(errno == 0 ? EIO : errno);
    return content;
}

/// The same. Throws an Error that names the file and the reason where it cannot be read.
template <typename Error> std::string contentOr(const std::filesystem::path& path)
{
    std::string reason;
    std::string content = contentOf(path, reason);
    if (!reason.empty())
        throw Error("cannot read " + path.string() + ": " + reason);
    return content;
}

} // namespace practice
