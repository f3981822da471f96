#pragma once

#include <QByteArray>
#include <QList>

/// One decaying sine tone of a sound.
struct Tone {
    double frequency = 0.0; ///< Hz
    double start = 0.0;     ///< seconds from the beginning of the sound
    double length = 0.0;    ///< seconds
};

/// A complete WAV image, 16-bit mono at 44100 Hz, `seconds` long, of the tones added up.
[[nodiscard]] QByteArray synthesize(const QList<Tone>& tones, double seconds);
