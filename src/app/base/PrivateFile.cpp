#include "app/base/PrivateFile.h"

#include <QSaveFile>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#ifdef Q_OS_UNIX
namespace {

/// A file that somebody else can name or read is not ours to write secrets into.
bool belongsToUserAlone(int descriptor)
{
    struct stat status = {};
    if (::fstat(descriptor, &status) != 0)
        return false;
    if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid() || status.st_nlink != 1)
        return false;
    return (status.st_mode & 0777) == 0600 || ::fchmod(descriptor, 0600) == 0;
}

} // namespace

bool openPrivateFile(QFile& file, const QString& path, QIODevice::OpenMode mode)
{
    const bool append = mode.testFlag(QIODevice::Append);
    // Non-blocking, because opening a pipe that nobody reads would hang the window.
    const int flags = O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | (append ? O_APPEND : 0);
    const int descriptor = ::open(QFile::encodeName(path).constData(), flags, 0600);
    if (descriptor < 0)
        return false;
    // Cut only once it is known to be ours: O_TRUNC would empty a hard-linked file before the check.
    if (!belongsToUserAlone(descriptor) || (!append && ::ftruncate(descriptor, 0) != 0)
        || !file.open(descriptor, mode, QFileDevice::AutoCloseHandle)) {
        ::close(descriptor);
        return false;
    }
    return true;
}

void settle(QFile& file)
{
    if (file.flush())
        ::fsync(file.handle());
}

void settleFolder(const QString& folder)
{
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
        return;
    ::fsync(descriptor);
    ::close(descriptor);
}
#else
bool openPrivateFile(QFile& file, const QString& path, QIODevice::OpenMode mode)
{
    file.setFileName(path);
    return file.open(mode) && file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
}

void settle(QFile& file)
{
    file.flush();
}

void settleFolder(const QString& /*folder*/) { }
#endif

bool replacePrivateFile(const QString& path, const QByteArray& bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    // A full disk shows only here: commit() alone reports success for a short file.
    if (!file.setPermissions(QFile::ReadOwner | QFile::WriteOwner) || file.write(bytes) != bytes.size()
        || !file.flush())
        return false; // what was written goes with the QSaveFile
    return file.commit();
}
