#pragma once

#include <QString>

/// What a terminal that was killed while it saved has left beside the settings file `filePath`: files that
/// should have taken the place of the settings or of their copy, and Qt's lock. Call while no other terminal
/// saves. A file that a person may have named so, as "Terminal.conf.backup", stays.
void removeSettingsLeftOvers(const QString& filePath);

/// Removes Qt's lock alone. Qt would wait up to half a minute for one that was left empty, or whose process
/// number belongs to another terminal by now; in a sandbox every terminal may have the same.
void removeSettingsLock(const QString& filePath);
