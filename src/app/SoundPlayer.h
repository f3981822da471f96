#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <memory>

class QSoundEffect;

/// The terminal's four notification sounds.
enum class SoundKind : int { Open = 0, Close = 1, Fill = 2, Error = 3 };

/// One decaying sine tone of a sound.
struct Tone {
    double frequency = 0.0; ///< Hz
    double start = 0.0;     ///< seconds from the beginning of the sound
    double length = 0.0;    ///< seconds
};

/// Plays the sound once the event loop is reached again, so that no caller ever waits for an audio
/// server. That turn itself may take long, once a kind: loading waits for an audio server that does
/// not answer, and the toolkit loads on the thread that plays. The file is written in any case; silent when
/// there is no output device, no writable temporary folder or no such kind.
void play(SoundKind kind);

/// Writes the sound's file on first use and returns its path, also when it could not be written;
/// empty for a kind that does not exist.
[[nodiscard]] QString soundFilePath(SoundKind kind);

/// Whether this run wrote the sound's file in full; what else may stand under its name is not ours
/// to play.
[[nodiscard]] bool soundFileReady(SoundKind kind);

/// A new effect that plays the file at the terminal's volume.
[[nodiscard]] std::unique_ptr<QSoundEffect> newSoundEffect(const QString& filePath);

/// A complete WAV image, 16-bit mono at 44100 Hz, `seconds` long, of the tones added up.
[[nodiscard]] QByteArray synthesize(const QList<Tone>& tones, double seconds);
