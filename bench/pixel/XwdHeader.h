#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

/// Where the pixels lie in an XWD file, which is what Xvfb keeps its screen in when it is started with
/// -fbdir.
struct XwdHeader final {
    int width = 0;
    int height = 0;
    std::size_t pixelsAt = 0;     ///< in bytes from the beginning of the file
    std::size_t bytesPerLine = 0; ///< from a row to the next

    /// Of the whole file. Nothing for bytes that are no such file, are too short for what they announce, or
    /// hold pixels of another kind than 32 bits each in the order of this machine.
    [[nodiscard]] static std::optional<XwdHeader> read(std::span<const std::uint8_t> file);
};
