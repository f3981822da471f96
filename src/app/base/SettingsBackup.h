#pragma once

#include <QByteArray>
#include <QString>

/// What stands beside a settings file to tell whether it is whole, and to put it back: a copy of what was
/// saved last, "….copy", and the digest of it, "….digest". While a save is under way the digest is called
/// "….saving"; giving it another name needs no room, even on a full disk. Where there is room, a second line
/// in it tells what is being saved. All of them are private files.
class SettingsBackup final {
public:
    explicit SettingsBackup(QString filePath);

    enum class State {
        Saved,       ///< just what was saved last
        Unconfirmed, ///< a save began, and nothing says that it ended well
        Cut,         ///< the beginning of what was saved last, and no more
        Other,       ///< anything else: edited by hand, or from before there were digests
    };
    /// What the content of the settings file is.
    [[nodiscard]] State stateOf(const QByteArray& content) const;

    /// Leaves a mark that the file is about to be written, with the digest of the values that it will hold.
    /// False when the mark cannot be left: then do not write.
    [[nodiscard]] bool beginSave(const QByteArray& valuesDigest);
    /// Whether the save that began last was to leave these values; false too when there was no room for that.
    [[nodiscard]] bool wasToSave(const QByteArray& valuesDigest) const;
    /// Makes `content`, which was read back from the settings file and found right, the copy. False when the
    /// copy could not be renewed.
    [[nodiscard]] bool confirm(const QByteArray& content);
    /// Renews the copy alone.
    [[nodiscard]] bool copyFrom(const QByteArray& content) const;

    /// Empty when there is none.
    [[nodiscard]] QByteArray copy() const;
    /// Whether the digest is that of the content.
    [[nodiscard]] bool vouchesFor(const QByteArray& content) const;
    /// Puts the copy in the place of the settings file. Where there is no room for a second one, the copy
    /// itself moves there.
    [[nodiscard]] bool putBack();
    /// Removes all of it.
    void forget();

    [[nodiscard]] QString copyPath() const;

private:
    [[nodiscard]] QString digestPath() const;
    [[nodiscard]] QString savingPath() const;
    [[nodiscard]] QByteArray digestInMark() const;
    void writeDigest(const QByteArray& content);

    QString m_filePath;
};
