#pragma once

/// The terminal's four notification sounds.
enum class SoundKind : int { Open = 0, Close = 1, Fill = 2, Error = 3 };
