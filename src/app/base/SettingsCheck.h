#pragma once

#include "app/base/SettingsValues.h"

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QFile;
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

    /// True for content that is no settings file, or that was visibly cut. An edit by hand is no damage.
    /// Content that there is no room to check counts as sound.
    [[nodiscard]] bool isDamaged(const QByteArray& content) const;

    /// The content without the entries that Qt reads but does not write so that it would read them again,
    /// such as one of a section whose name begins with a backslash; nothing when each entry can be saved, or
    /// when there is no room to tell.
    [[nodiscard]] std::optional<QByteArray> partToSave(const QByteArray& content) const;

    /// Removes the files that killed terminals have left; one that another terminal is using stays.
    void removeLeftOvers() const;

private:
    [[nodiscard]] std::optional<SettingsValues> entriesOf(const QByteArray& content) const;
    [[nodiscard]] bool isSavedWhole(const QByteArray& content, SettingsValues entries) const;
    /// A private file with this content, which goes with the object; nothing when there is no room for it.
    [[nodiscard]] std::unique_ptr<QFile> fileWith(const QByteArray& content) const;
    /// What Qt makes of a file with this content when something in it changes.
    [[nodiscard]] std::optional<QByteArray> savedAgain(
        const QByteArray& content, const std::function<void(QSettings&)>& change) const;

    QString m_folder;
};
