#pragma once

#include <QString>

class TerminalSettings;

/// What a terminal saves, made from a number, so that whoever reads it back can tell of what age each part of
/// it is. A step saves one thing only, as a trader does: the e-mail address, the alerts, or all of the
/// layout, in turn.
namespace savedstate {

/// Saves step `number`, which is above 0. False when the settings say that it could not be saved.
[[nodiscard]] bool save(TerminalSettings& settings, int number);

/// What was read back.
struct Found {
    int number = 0; ///< the last step whose state this is; 0 before the first
    QString fault;  ///< what is not whole; empty when all of it is
};
[[nodiscard]] Found read(const TerminalSettings& settings);

} // namespace savedstate
