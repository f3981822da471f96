#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

class QSettings;
class QVariant;

/// All values of a settings file by their keys, each made comparable.
using SettingsValues = QMap<QString, QByteArray>;

/// Equal for two values when Qt writes them to a settings file as the same: bytes and lists exactly, all else
/// by the text that it reads as.
[[nodiscard]] QByteArray comparable(const QVariant& value);

[[nodiscard]] SettingsValues settingsValues(const QSettings& settings);

/// Differs whenever a key or a value does; the same whether the values were just set or read from a file.
[[nodiscard]] QByteArray digestOf(const SettingsValues& values);
