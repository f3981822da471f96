#include "lab/cli/DeafScript.h"

#include "lab/cli/Commands.h"
#include "lab/cli/Screen.h"
#include "lab/core/output/Texts.h"

#include <cstdlib>
#include <unistd.h>

namespace lab {

std::function<void()> leaveDeafScript(const std::string& script, std::chrono::milliseconds limit)
{
    const std::string text = std::string(isTerminal(Stream::Error) ? "\r\x1b[K" : "") + "tavoran-lab: "
        + script + ": not at its end after " + shortestText(static_cast<double>(limit.count()) / 1000)
        + " seconds, and nothing can be written of its run: it hangs where it cannot be interrupted, as in a "
          "regular expression\n";
    return [text] {
        // Nothing else: the script's thread still runs.
        static_cast<void>(::write(STDERR_FILENO, text.data(), text.size()));
        std::_Exit(fellShort);
    };
}

} // namespace lab
