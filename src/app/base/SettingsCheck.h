#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <optional>

class QSettings;

/// Looks at the bytes of a settings file as Qt would read them. Qt parses files only, so
/// the bytes go into a private file for a moment, "Terminal.check." and six letters, in the folder of the
/// settings.
class SettingsCheck final {
public:
    explicit SettingsCheck(QString folder);

    /// What `look` says of the content as it was parsed, false when it cannot be parsed; nothing when there
    /// is no room for the file.
    [[nodiscard]] std::optional<bool> parsed(
        const QByteArray& content, const std::function<bool(const QSettings&)>& look) const;

    /// True for content that is no settings file or was cut in a way that shows. A file that an editor wrote
    /// is none, and neither is one that there is no room to check.
    [[nodiscard]] bool isDamaged(const QByteArray& content) const;

    /// Removes what a terminal that was killed has left. A file that another one uses just now stays.
    void removeLeftOvers() const;

private:
    QString m_folder;
};
