#pragma once

#include <QString>

/// Keeps the other terminals of this user from saving while it lives, so that nobody sees a save half done.
/// The folder itself is locked: that takes no room on a full disk and ends with the process. A terminal that
/// does not get the lock within `patienceMs` goes on without it.
class SettingsLock final {
public:
    static constexpr int patienceMs = 200;

    explicit SettingsLock(const QString& folder);
    ~SettingsLock();
    Q_DISABLE_COPY_MOVE(SettingsLock)

    [[nodiscard]] bool isHeld() const { return m_isHeld; }

private:
    int m_folder = -1;
    bool m_isHeld = false;
};
