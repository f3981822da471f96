#pragma once

#include "fuzz/Fuzz.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>

#include <unistd.h>

namespace fuzz {

/// A private folder for the readers that want files; it goes with the process.
class Folder final {
public:
    Folder()
        : m_path(std::filesystem::temp_directory_path() / ("tavoran-fuzz-" + std::to_string(::getpid())))
    {
        std::filesystem::create_directories(m_path);
    }
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

    [[nodiscard]] std::filesystem::path write(const char* name, std::string_view content) const
    {
        const std::filesystem::path file = m_path / name;
        std::ofstream stream(file, std::ios::binary | std::ios::trunc);
        stream.write(content.data(), static_cast<std::streamsize>(content.size()));
        stream.close();
        demand(stream.good(), "there is room for a file");
        return file;
    }

    [[nodiscard]] std::string read(const char* name) const
    {
        std::ifstream stream(m_path / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

private:
    std::filesystem::path m_path;
};

inline bool isOneLine(std::string_view text)
{
    return !text.empty() && text.find('\n') == std::string_view::npos
        && text.find('\r') == std::string_view::npos;
}

/// The number that a text begins with, with something behind it: that of a line or a row, from 1 on; 0 for
/// none.
inline std::size_t placeAt(std::string_view text)
{
    std::size_t place = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), place);
    return error == std::errc() && text.front() != '0' && end != text.data() + text.size() ? place : 0;
}

/// Whether a refusal is one line that begins with the file and the number of one of its lines. Where a file
/// has ended too early that is the one behind its last.
inline bool namesLine(std::string_view refusal, std::string_view file, std::string_view content)
{
    if (!isOneLine(refusal) || !refusal.starts_with(file) || !refusal.substr(file.size()).starts_with(':'))
        return false;
    refusal.remove_prefix(file.size() + 1);
    const auto ends = static_cast<std::size_t>(std::count(content.begin(), content.end(), '\n'));
    const std::size_t line = placeAt(refusal);
    const std::size_t reason = refusal.find(": ");
    return line >= 1 && line <= ends + 1 && reason == refusal.find_first_not_of("0123456789")
        && reason + 2 < refusal.size();
}

} // namespace fuzz
