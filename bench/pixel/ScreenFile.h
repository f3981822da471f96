#pragma once

#include "pixel/Screen.h"

#include <cstddef>
#include <string>

/// The screen of an Xvfb that was started with -fbdir FOLDER, mapped into this process: what the X server
/// draws stands here in the same moment, and looking at it costs nobody else anything. The folder should lie
/// in memory (/dev/shm), since the kernel stops whoever writes into a page that is on its way to a disk.
class ScreenFile final {
public:
    /// FOLDER/Xvfb_screen0. Throws std::runtime_error when there is nothing to be looked at.
    explicit ScreenFile(const std::string& path);
    ~ScreenFile();
    ScreenFile(const ScreenFile&) = delete;
    ScreenFile& operator=(const ScreenFile&) = delete;

    [[nodiscard]] const Screen& screen() const { return m_screen; }

private:
    struct Mapping {
        void* bytes = nullptr;
        std::size_t size = 0;
    };
    [[nodiscard]] static Mapping mapped(const std::string& path);
    [[nodiscard]] static Screen screenIn(const Mapping& mapping, const std::string& path);

    Mapping m_mapping;
    Screen m_screen;
};
