// Finds the moment at which something appears in the pixels of an Xvfb.
//   Xvfb :7 -fbdir /dev/shm/FOLDER -screen 0 1920x1200x24 &
//   tavoran-pixel-watch /dev/shm/FOLDER/Xvfb_screen0 [PAUSE]
// looks every PAUSE microseconds (50 unless told; 0 without a pause, for a machine with a processor to
// spare), before others run where the system lets it, and keeps processors from sleeping meanwhile. It says
// first whether it may: "awake 1" or "awake 0". Errands come on the standard input, a line each, and
// are answered on the standard output. NS is CLOCK_MONOTONIC in nanoseconds, X Y W H a part of the screen in
// pixels, MS how many milliseconds to look at most:
//   moving X Y W H MS   looks for all that time: "box X Y W H", the least part that holds all changes, or
//                       "still". It finds the part worth watching while prices come.
//   change X Y W H MS   the first change of this part, against what it shows now:
//                       "seen NS AGO" when it is there; the look before, AGO nanoseconds earlier, has not
//                       seen it, so that it is no older; "missed NS" if it has not come until then
// Both say "armed NS" once they look: whoever then stamps a price and sends it knows that what is seen has
// come later.
// What cannot be understood is answered with "bad".

#include "pixel/AwakeProcessors.h"
#include "pixel/ScreenFile.h"
#include "pixel/WatchErrands.h"

#include <exception>
#include <iostream>
#include <stdexcept>
#include <string>

int main(int argc, char** argv)
{
    try {
        if (argc < 2 || argc > 3)
            throw std::runtime_error("usage: tavoran-pixel-watch FILE [PAUSE]");
        const ScreenFile file(argv[1]);
        constexpr int usualPause = 50;
        const int pause = argc == 3 ? std::stoi(argv[2]) : usualPause;
        if (pause > 0)
            Lookout::goFirst();
        const AwakeProcessors awake;
        std::cout << "awake " << (awake.areKept() ? 1 : 0) << std::endl;
        WatchErrands errands(file.screen(), Lookout(1000LL * pause), std::cout);
        for (std::string line; std::getline(std::cin, line);)
            errands.run(line);
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return 0;
}
