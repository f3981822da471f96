#include "lab/core/study/WalkWindows.h"

#include <algorithm>

namespace lab {

std::vector<WalkWindow> walkWindows(practice::TimeMs from, practice::TimeMs to, practice::TimeMs train,
    practice::TimeMs test, bool isAnchored)
{
    std::vector<WalkWindow> windows;
    for (practice::TimeMs start = from; start + train < to; start += test)
        windows.push_back({isAnchored ? from : start, start + train, std::min(start + train + test, to)});
    return windows;
}

} // namespace lab
