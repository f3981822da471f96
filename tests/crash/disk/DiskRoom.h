#pragma once

// The room on the disk: all of it, what tavoran_disk_room() says, or TAVORAN_DISK_ROOM, a file of eight bytes
// with the number of those that still fit, which others may change at any time. With
// TAVORAN_DISK_ROOM_NAMES=1 names take room as well, and with TAVORAN_DISK_ROOM_GROWTH=1 bytes take none that
// are written over others, as on a disk that writes them in place.

#include <cstddef>
#include <cstdint>

namespace faultydisk {

/// Whether there is no room for a new name.
[[nodiscard]] bool isFullForNames();

/// How many of the bytes that are to be written at a place in a file there is room for, which is taken.
[[nodiscard]] std::size_t takenAt(int descriptor, std::int64_t place, std::size_t size);

} // namespace faultydisk
