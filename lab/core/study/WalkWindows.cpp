#include "lab/core/study/WalkWindows.h"

#include <algorithm>

namespace lab {

std::vector<WalkWindow> walkWindows(practice::TimeMs from, practice::TimeMs to, practice::TimeMs train,
    practice::TimeMs test, bool isAnchored)
{
    std::vector<WalkWindow> windows;
    for (practice::TimeMs start = from; start + train < to; start += test) {
        const practice::TimeMs end = start + train + test;
        windows.push_back({isAnchored ? from : start, start + train, std::min(end, to),
            std::max<practice::TimeMs>(end - to, 0)});
    }
    return windows;
}

} // namespace lab
