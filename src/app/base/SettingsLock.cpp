#include "app/base/SettingsLock.h"

#include <QFile>
#include <QThread>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

SettingsLock::SettingsLock(const QString& folder)
    : m_folder(::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC))
{
    constexpr int pauseMs = 5;
    if (m_folder < 0)
        return;
    for (int waited = 0;; waited += pauseMs) {
        m_isHeld = ::flock(m_folder, LOCK_EX | LOCK_NB) == 0;
        if (m_isHeld || errno != EWOULDBLOCK || waited >= patienceMs)
            return;
        QThread::msleep(pauseMs);
    }
}

SettingsLock::~SettingsLock()
{
    if (m_folder >= 0)
        ::close(m_folder);
}
#else
SettingsLock::SettingsLock(const QString& /*folder*/) { }

SettingsLock::~SettingsLock() = default;
#endif
