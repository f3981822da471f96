#include "app/FileFixture.h"
#include "app/base/PrivateFile.h"
#include "support/TestMain.h"

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using fixtures::contentOf;
using fixtures::FullDisk;
using fixtures::modeOf;
using fixtures::writeFile;

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
        writeFile(m_path, "old");
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
        writeFile(m_path, "something long");
        QFile file;
        QVERIFY(openPrivateFile(file, m_path, QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("x");
        file.close();
        QCOMPARE(contentOf(m_path), "x");
    }

    void aSymbolicLinkIsNotFollowed()
    {
        const QString target = m_folder->filePath(u"target"_s);
        writeFile(target, "precious");
        QVERIFY(QFile::link(target, m_path));
        QFile file;
        QVERIFY(!openPrivateFile(file, m_path, QIODevice::WriteOnly | QIODevice::Truncate));
        QCOMPARE(contentOf(target), "precious");
    }

    void aHardLinkIsNotWritten()
    {
        const QString target = m_folder->filePath(u"target"_s);
        writeFile(target, "precious");
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
        writeFile(m_path, "old");
        QVERIFY(replacePrivateFile(m_path, "new"));
        QCOMPARE(contentOf(m_path), "new");
        QCOMPARE(modeOf(m_path), 0600);
        QVERIFY(!replacePrivateFile(m_folder->filePath(u"no/such"_s), "x"));
    }

    void aFullDiskLeavesTheOldContent()
    {
        writeFile(m_path, "old");
        const bool replaced = [this] {
            const FullDisk full;
            return replacePrivateFile(m_path, QByteArray(100000, 'x'));
        }();
        QVERIFY(!replaced);
        QCOMPARE(contentOf(m_path), "old");
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"file"_s});
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
};

TAVORAN_TEST(TestPrivateFile)
#include "tst_PrivateFile.moc"
