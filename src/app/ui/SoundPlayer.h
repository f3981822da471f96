#pragma once

#include "app/base/SoundKind.h"

#include <QString>

#include <memory>

class QSoundEffect;

/// Plays the sound once the event loop is reached again, so that no caller ever waits for an audio server.
/// That turn may itself take long, the first time that a kind is played: Qt loads the file on the thread that
/// plays it, and waits there for an audio server that does not answer. The file is written in any case. No
/// sound without an output device or a writable temporary folder, or for an unknown kind.
void play(SoundKind kind);

/// Writes the sound's file on first use and returns its path, also when it could not be written;
/// empty for a kind that does not exist.
[[nodiscard]] QString soundFilePath(SoundKind kind);

/// Whether this run wrote the sound's file in full; what else may stand under its name is not ours
/// to play.
[[nodiscard]] bool soundFileReady(SoundKind kind);

/// A new effect that plays the file at the terminal's volume.
[[nodiscard]] std::unique_ptr<QSoundEffect> newSoundEffect(const QString& filePath);
