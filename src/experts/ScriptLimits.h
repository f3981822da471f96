#pragma once

/// Gives this process what the script engine needs to survive scripts that are deeply nested or linked: a
/// larger stack for the main thread and for the collector of unused values. It must come before the first
/// engine; further calls do nothing.
void raiseScriptLimits();
