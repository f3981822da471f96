#pragma once

/// Gives this process what the script engine needs to survive scripts that are deeply nested or linked: a
/// larger stack for the main thread and for the collector of unused values. For once, before the first
/// engine.
void raiseScriptLimits();
