#pragma once

#include "app/base/SoundKind.h"

#include <QString>

#include <memory>

class QSoundEffect;

/// Plays the sound once the event loop is reached again, so that no caller ever waits for an audio
/// server. That turn itself may take long, once a kind: loading waits for an audio server that does
/// not answer, and Qt loads on the thread that plays. The file is written in any case; silent when
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
