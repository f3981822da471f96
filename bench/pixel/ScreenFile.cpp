#include "pixel/ScreenFile.h"

#include "pixel/XwdHeader.h"

#include <fcntl.h>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

ScreenFile::ScreenFile(const std::string& path)
    : m_mapping(mapped(path))
    , m_screen(screenIn(m_mapping, path))
{
}

ScreenFile::~ScreenFile()
{
    munmap(m_mapping.bytes, m_mapping.size);
}

ScreenFile::Mapping ScreenFile::mapped(const std::string& path)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat found { };
    const bool there = file >= 0 && fstat(file, &found) == 0 && found.st_size > 0;
    const auto size = static_cast<std::size_t>(found.st_size);
    void* const bytes = there ? mmap(nullptr, size, PROT_READ, MAP_SHARED, file, 0) : MAP_FAILED;
    if (file >= 0)
        close(file);
    if (bytes == MAP_FAILED)
        throw std::runtime_error(path + " cannot be mapped");
    return {bytes, size};
}

Screen ScreenFile::screenIn(const Mapping& mapping, const std::string& path)
{
    const auto* const bytes = static_cast<const std::uint8_t*>(mapping.bytes);
    const auto header = XwdHeader::read({bytes, mapping.size});
    if (!header) {
        munmap(mapping.bytes, mapping.size);
        throw std::runtime_error(path + " holds no screen of 32 bits a pixel");
    }
    const void* const pixels = bytes + header->pixelsAt;
    return {static_cast<const volatile std::uint32_t*>(pixels), header->width, header->height,
        header->bytesPerLine / sizeof(std::uint32_t)};
}
