#pragma once

#include "app/base/SettingsBackup.h"
#include "app/base/SettingsCheck.h"
#include "app/base/SettingsValues.h"

#include <QMap>
#include <QSettings>
#include <QStringList>

#include <memory>
#include <optional>

/// The settings file and its safety: the user's alone (0600 in a 0700 folder) before the first
/// write, a verified copy beside it, and the copy put back when the file turns out damaged, cut or empty.
/// Nothing is written but by sync(), and only while the copy holds what was saved before.
class SettingsStore final {
public:
    /// Opens the store, repairing it first when needed. A file that is missing altogether starts
    /// afresh: deleting it is how a person resets the terminal and signs out.
    explicit SettingsStore(const QString& filePath);
    /// Saves what is not saved yet.
    ~SettingsStore();
    Q_DISABLE_COPY_MOVE(SettingsStore)

    /// Where the desktop keeps this user's store.
    [[nodiscard]] static QString userFilePath();

    [[nodiscard]] QVariant value(QLatin1StringView key) const;
    void setValue(QLatin1StringView key, const QVariant& value);
    void remove(QLatin1StringView key);

    /// Writes to disk, reads back, and renews the copy from what was read. False when disk and memory then
    /// differ; the older copy stays. If somebody else has changed the file, it is first checked and repaired
    /// as at the start.
    [[nodiscard]] bool sync();

    [[nodiscard]] QString filePath() const { return m_filePath; }
    [[nodiscard]] QString copyPath() const { return m_backup.copyPath(); }
    [[nodiscard]] QString damagedPath() const;
    [[nodiscard]] QStringList takeNotices();

private:
    void open();
    void makePrivate();
    void repair();
    [[nodiscard]] QByteArray repairDamage();
    [[nodiscard]] bool leaveOutUnsaved(const QByteArray& damaged);
    [[nodiscard]] bool setAside(const QByteArray& damaged) const;
    [[nodiscard]] bool mayWrite();
    void writeChanges();
    [[nodiscard]] SettingsValues valuesToCome() const;
    [[nodiscard]] bool matchesMemory(const QByteArray& content) const;
    /// Nothing when there is no room to tell.
    [[nodiscard]] std::optional<bool> isWhatWasBeingSaved(const QByteArray& content) const;
    [[nodiscard]] QString folder() const;

    QString m_filePath;
    SettingsBackup m_backup;
    SettingsCheck m_check;
    QStringList m_notices;
    std::unique_ptr<QSettings> m_settings;
    QMap<QString, std::optional<QVariant>> m_changes; ///< since the last good sync; nothing: removed
    std::optional<QByteArray> m_seen;                 ///< the file as it was read or saved last
    bool m_isUnrepaired = false;                      ///< file and copy stay as they are: no room
    bool m_fileIsSuspect = false;                     ///< the last save did not end well
};
