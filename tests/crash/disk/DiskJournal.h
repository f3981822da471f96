#pragma once

#include <string>

/// What was done to the disk, one operation after the other, in TAVORAN_DISK_JOURNAL: for each a line "LETTER
/// NUMBER NUMBER SIZE SIZE", then so many bytes, twice. power_loss.py works out from it what a disk may hold
/// when the power goes after any of them.
namespace faultydisk {

void note(
    char letter, long long first, long long second, const std::string& one = {}, const std::string& two = {});

} // namespace faultydisk
