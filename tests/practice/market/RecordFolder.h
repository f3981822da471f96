#pragma once

#include "practice/core/Types.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

namespace practice::checks {

/// A folder of records that disappears with it.
class RecordFolder final {
public:
    RecordFolder()
    {
        std::random_device device;
        m_path = std::filesystem::temp_directory_path() / ("practice-records-" + std::to_string(device()));
        std::filesystem::create_directory(m_path);
    }
    RecordFolder(const RecordFolder&) = delete;
    RecordFolder& operator=(const RecordFolder&) = delete;
    ~RecordFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

    void write(const std::string& name, const std::string& text) const
    {
        std::ofstream(m_path / name, std::ios::binary) << text;
    }

private:
    std::filesystem::path m_path;
};

/// The time of a record's minute, counted from the first of a month.
inline std::string minuteText(TimeMs minutes)
{
    char text[32];
    std::snprintf(text, sizeof text, "2020-01-%02dT%02d:%02d:00Z", static_cast<int>(minutes / 1440 + 1),
        static_cast<int>(minutes / 60 % 24), static_cast<int>(minutes % 60));
    return text;
}

} // namespace practice::checks
