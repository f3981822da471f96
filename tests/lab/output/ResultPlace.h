#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace lab::samples {

/// A new folder that is removed at the end.
class ResultPlace {
public:
    ResultPlace()
    {
        std::string name = (std::filesystem::temp_directory_path() / "tavoran-lab-XXXXXX").string();
        m_path = ::mkdtemp(name.data());
    }
    ResultPlace(const ResultPlace&) = delete;
    ResultPlace& operator=(const ResultPlace&) = delete;
    ~ResultPlace()
    {
        std::filesystem::permissions(m_path, std::filesystem::perms::owner_all);
        std::filesystem::remove_all(m_path);
    }
    [[nodiscard]] const std::filesystem::path& path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace lab::samples
