#pragma once

#include "fuzz/Fuzz.h"

#include <filesystem>
#include <fstream>
#include <string>

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

private:
    std::filesystem::path m_path;
};

inline bool isOneLine(std::string_view text)
{
    return !text.empty() && text.find('\n') == std::string_view::npos
        && text.find('\r') == std::string_view::npos;
}

} // namespace fuzz
