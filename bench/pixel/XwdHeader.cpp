#include "pixel/XwdHeader.h"

#include <array>
#include <bit>

namespace {

// Places of the numbers in the header, each of 32 bits with its highest byte first.
enum Field : std::size_t {
    HeaderSize,
    Version,
    Format,
    Depth,
    Width,
    Height,
    Offset,
    ByteOrder,
    BitsPerPixel = 11,
    BytesPerLine,
    ColorCount = 19,
    FieldCount = 25,
};

constexpr std::uint32_t knownVersion = 7;
constexpr std::uint32_t wholePixels = 2;
constexpr std::uint32_t bytesOfColor = 12;
constexpr std::uint32_t bytesOfPixel = 4;
constexpr std::uint32_t largestSide = 32767;

std::uint32_t numberAt(std::span<const std::uint8_t> file, std::size_t field)
{
    std::uint32_t number = 0;
    for (const std::uint8_t byte : file.subspan(field * sizeof(number), sizeof(number)))
        number = number << 8 | byte;
    return number;
}

} // namespace

std::optional<XwdHeader> XwdHeader::read(std::span<const std::uint8_t> file)
{
    std::array<std::uint32_t, FieldCount> fields{};
    if (file.size() < sizeof(fields))
        return std::nullopt;
    for (std::size_t field = 0; field < fields.size(); ++field)
        fields.at(field) = numberAt(file, field);
    const bool littleEndian = std::endian::native == std::endian::little;
    const bool known = fields[Version] == knownVersion && fields[Format] == wholePixels
        && fields[BitsPerPixel] == 8 * bytesOfPixel && fields[ByteOrder] == (littleEndian ? 0 : 1);
    const bool sound = fields[HeaderSize] >= sizeof(fields) && fields[Width] > 0 && fields[Height] > 0
        && fields[Width] <= largestSide && fields[Height] <= largestSide
        && fields[BytesPerLine] >= fields[Width] * bytesOfPixel;
    if (!known || !sound)
        return std::nullopt;
    const XwdHeader header{static_cast<int>(fields[Width]), static_cast<int>(fields[Height]),
        fields[HeaderSize] + std::size_t{fields[ColorCount]} * bytesOfColor, fields[BytesPerLine]};
    const std::size_t end = header.pixelsAt + std::size_t{fields[Height]} * header.bytesPerLine;
    if (header.pixelsAt % bytesOfPixel != 0 || header.bytesPerLine % bytesOfPixel != 0 || end > file.size())
        return std::nullopt;
    return header;
}
