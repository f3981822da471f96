#pragma once

#include <QFile>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>

/// Files as the system sees them.
namespace fixtures {

/// The permission bits; -1 when there is no such file.
inline int modeOf(const QString& path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? static_cast<int>(status.st_mode & 0777)
                                                                     : -1;
}

inline QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

/// Writes a file as somebody else would who comes later: the settings take one of the same size and time for
/// unchanged, and the system's clock for files stands still for some milliseconds.
inline void writeFile(const QString& path, const QByteArray& bytes)
{
    static int later = 0;
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
    QVERIFY(file.flush());
    QVERIFY(
        file.setFileTime(QDateTime::currentDateTime().addSecs(++later), QFileDevice::FileModificationTime));
}

/// While it lives, a write stops half-way when a file reaches so many bytes, as on a full disk.
class FullDisk final {
public:
    explicit FullDisk(rlim_t room = 1000)
        : m_oldHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &m_before), 0);
        const struct rlimit tiny = {.rlim_cur = room, .rlim_max = m_before.rlim_max};
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &tiny), 0);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_oldHandler);
    }
    Q_DISABLE_COPY_MOVE(FullDisk)

private:
    void (*m_oldHandler)(int);
    struct rlimit m_before = {};
};

} // namespace fixtures
