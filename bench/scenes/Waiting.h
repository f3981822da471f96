#pragma once

#include <QString>

#include <functional>

/// Ends the program, with these words for whoever has started it.
[[noreturn]] void giveUp(const QString& why);

/// Turns the event loop until the condition is met; gives up after two minutes.
void waitUntil(const std::function<bool()>& met, const QString& what);

/// Turns the event loop for so long.
void pauseFor(int milliseconds);
