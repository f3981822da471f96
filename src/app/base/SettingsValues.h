#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

class QSettings;

/// All values of a settings file by their keys, each as the text that it reads as.
using SettingsValues = QMap<QString, QString>;

[[nodiscard]] SettingsValues settingsValues(const QSettings& settings);

/// Differs whenever a key or a value does; the same whether the values were just set or read from a file.
[[nodiscard]] QByteArray digestOf(const SettingsValues& values);
