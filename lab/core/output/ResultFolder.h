#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace lab {

/// Why something could not be written or read: one line that names the file.
struct OutputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Whether there is nothing in a folder but what killed processes have left on its way there. False where
/// that cannot be seen.
[[nodiscard]] bool holdsNothing(const std::filesystem::path& folder);

/// The names in a folder are to outlast a power cut. Best effort: not every file system can do that.
void settleFolder(const std::filesystem::path& folder);

/// The files of one result on their way into a folder: all of them get there, or none. What is in the folder
/// under these names stays as it is until every new file lies beside it, whole and on the disk. Only a
/// process that is killed while it gives the files their names leaves some of the new ones and some of the
/// former. What it leaves under hidden names goes with the next result.
class ResultFolder {
public:
    /// The folder need not exist yet; nothing is touched before commit().
    explicit ResultFolder(std::filesystem::path folder);

    /// A file of this name, without any folder, and its whole content. A name that was added before gets the
    /// new content.
    void add(std::string name, std::string bytes);

    /// Writes all that was added. Throws OutputError when that fails, after it has taken its own files away
    /// and put former ones back.
    void commit();

private:
    struct File {
        std::string name;
        std::string bytes;
    };

    std::filesystem::path m_folder;
    std::vector<File> m_files;
};

} // namespace lab
