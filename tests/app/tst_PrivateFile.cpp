#include "app/PrivateFile.h"
#include "support/TestMain.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

int modeOf(const QString& path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? static_cast<int>(status.st_mode & 0777)
                                                                     : -1;
}

QByteArray contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

class TestPrivateFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_path = m_folder->filePath(u"file"_s);
        ::umask(022);
    }

    void aNewFileIsTheUsersAloneUnderTheUsualUmask()
    {
        QFile file;
        QVERIFY(openPrivateFile(file, m_path, QIODevice::WriteOnly | QIODevice::Append));
        QCOMPARE(modeOf(m_path), 0600);
    }

    void anExistingReadableFileIsTightened()
    {
        write(m_path, "old");
        QCOMPARE(modeOf(m_path), 0644);
        QFile file;
        QVERIFY(openPrivateFile(file, m_path, QIODevice::WriteOnly | QIODevice::Append));
        file.write("+new");
        file.close();
        QCOMPARE(modeOf(m_path), 0600);
        QCOMPARE(contentOf(m_path), "old+new");
    }

    void truncateStartsAfresh()
    {
        write(m_path, "something long");
        QFile file;
        QVERIFY(openPrivateFile(file, m_path, QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("x");
        file.close();
        QCOMPARE(contentOf(m_path), "x");
    }

    void aSymbolicLinkIsNotFollowed()
    {
        const QString target = m_folder->filePath(u"target"_s);
        write(target, "precious");
        QVERIFY(QFile::link(target, m_path));
        QFile file;
        QVERIFY(!openPrivateFile(file, m_path, QIODevice::WriteOnly | QIODevice::Truncate));
        QCOMPARE(contentOf(target), "precious");
    }

    void aHardLinkIsNotWritten()
    {
        const QString target = m_folder->filePath(u"target"_s);
        write(target, "precious");
        QCOMPARE(::link(QFile::encodeName(target).constData(), QFile::encodeName(m_path).constData()), 0);
        QFile file;
        QVERIFY(!openPrivateFile(file, m_path, QIODevice::WriteOnly | QIODevice::Truncate));
        QCOMPARE(contentOf(target), "precious");
    }

    void aPipeNeitherBlocksNorIsWritten()
    {
        QCOMPARE(::mkfifo(QFile::encodeName(m_path).constData(), 0600), 0);
        QFile file;
        QVERIFY(!openPrivateFile(file, m_path, QIODevice::WriteOnly | QIODevice::Append));
    }

    void aFolderOrAMissingFolderIsRefused()
    {
        QFile file;
        QVERIFY(!openPrivateFile(file, m_folder->path(), QIODevice::WriteOnly | QIODevice::Append));
        QVERIFY(!openPrivateFile(
            file, m_folder->filePath(u"no/such"_s), QIODevice::WriteOnly | QIODevice::Append));
    }

    void replacingIsPrivateAndWhole()
    {
        write(m_path, "old");
        QVERIFY(replacePrivateFile(m_path, "new"));
        QCOMPARE(contentOf(m_path), "new");
        QCOMPARE(modeOf(m_path), 0600);
        QVERIFY(!replacePrivateFile(m_folder->filePath(u"no/such"_s), "x"));
    }

    void aFullDiskLeavesTheOldContent()
    {
        // A file size limit stops a write half-way, as a full disk does.
        write(m_path, "old");
        struct rlimit before = {};
        QCOMPARE(::getrlimit(RLIMIT_FSIZE, &before), 0);
        const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        const struct rlimit tiny = {.rlim_cur = 1000, .rlim_max = before.rlim_max};
        QCOMPARE(::setrlimit(RLIMIT_FSIZE, &tiny), 0);
        const bool replaced = replacePrivateFile(m_path, QByteArray(100000, 'x'));
        ::setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, oldHandler);
        QVERIFY(!replaced);
        QCOMPARE(contentOf(m_path), "old");
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"file"_s});
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

TAVORAN_TEST_MAIN(TestPrivateFile)
#include "tst_PrivateFile.moc"
