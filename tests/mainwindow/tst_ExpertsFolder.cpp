#include "mainwindow/ExpertsFolder.h"
#include "support/TestMain.h"

#include <QStandardPaths>

using namespace Qt::StringLiterals;

class tst_ExpertsFolder final : public QObject {
    Q_OBJECT

    [[nodiscard]] QString path(const QString& name) const { return m_root->filePath(name); }

    void write(const QString& path, const QByteArray& text = "x")
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    [[nodiscard]] QByteArray read(const QString& path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    [[nodiscard]] QStringList names(const ExpertsFolder& folder) const
    {
        QStringList names;
        const QStringList scripts = folder.scripts();
        for (const QString& script : scripts)
            names.append(QFileInfo(script).fileName());
        return names;
    }

    std::unique_ptr<QTemporaryDir> m_root;
    QStringList m_examples;

private Q_SLOTS:
    void init()
    {
        m_root = std::make_unique<QTemporaryDir>();
        QDir(m_root->path()).mkpath(u"bundled"_s);
        m_examples = {path(u"bundled/MA_Cross.js"_s), path(u"bundled/RSI_Reversal.js"_s)};
        for (const QString& example : std::as_const(m_examples)) {
            write(example, "example");
            QFile::setPermissions(example, QFile::ReadOwner);
        }
    }

    void missingFolderIsCreatedWithTheExamples()
    {
        const ExpertsFolder folder(path(u"deep/data/Experts"_s));
        folder.prepare(m_examples);
        QCOMPARE(names(folder), QStringList({u"MA_Cross.js"_s, u"RSI_Reversal.js"_s}));
        QCOMPARE(read(folder.scripts().constFirst()), QByteArray("example"));
    }

    void copiesCanBeEdited()
    {
        const ExpertsFolder folder(path(u"Experts"_s));
        folder.prepare(); // copies of files inside the program, which alone hand on that they are read-only
        QCOMPARE(names(folder), QStringList({u"MA_Cross.js"_s, u"RSI_Reversal.js"_s}));
        for (const QString& script : folder.scripts()) {
            const QFile::Permissions permissions = QFile::permissions(script);
            QVERIFY(permissions.testFlag(QFile::ReadOwner));
            QVERIFY(permissions.testFlag(QFile::WriteOwner));
        }
    }

    void anyScriptKeepsTheExamplesOut()
    {
        const ExpertsFolder folder(path(u"Experts"_s));
        QDir().mkpath(folder.path());
        write(folder.path() + u"/mine.js"_s, "mine");
        folder.prepare(m_examples);
        QCOMPARE(names(folder), QStringList({u"mine.js"_s}));
        QCOMPARE(read(folder.scripts().constFirst()), QByteArray("mine"));
    }

    void examplesComeBackOnlyWhenNoScriptIsLeft()
    {
        const ExpertsFolder folder(path(u"Experts"_s));
        folder.prepare(m_examples);
        QVERIFY(QFile::remove(folder.path() + u"/MA_Cross.js"_s));
        folder.prepare(m_examples);
        QCOMPARE(names(folder), QStringList({u"RSI_Reversal.js"_s}));
        QVERIFY(QFile::remove(folder.path() + u"/RSI_Reversal.js"_s));
        folder.prepare(m_examples);
        QCOMPARE(names(folder).size(), 2);
    }

    void otherFilesNeitherCountNorAreListed()
    {
        const ExpertsFolder folder(path(u"Experts"_s));
        QDir().mkpath(folder.path() + u"/folder.js"_s);
        write(folder.path() + u"/notes.txt"_s);
        folder.prepare(m_examples);
        QCOMPARE(names(folder), QStringList({u"MA_Cross.js"_s, u"RSI_Reversal.js"_s}));
    }

    void failedCopyIsSkippedSilently()
    {
        const ExpertsFolder folder(path(u"Experts"_s));
        folder.prepare({path(u"bundled/missing.js"_s), m_examples.constFirst()});
        QCOMPARE(names(folder), QStringList({u"MA_Cross.js"_s}));
    }

    void unusablePathGivesNoScripts()
    {
        write(path(u"file"_s));
        const ExpertsFolder folder(path(u"file/Experts"_s));
        folder.prepare(m_examples);
        QVERIFY(folder.scripts().isEmpty());
    }

    void scriptsAreFullPathsByName()
    {
        const ExpertsFolder folder(path(u"Experts"_s));
        QDir().mkpath(folder.path());
        write(folder.path() + u"/b.js"_s);
        write(folder.path() + u"/a.js"_s);
        QCOMPARE(folder.scripts(), QStringList({folder.path() + u"/a.js"_s, folder.path() + u"/b.js"_s}));
    }

    void defaultPathIsBelowTheDataFolder()
    {
        const QString data = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
        QCOMPARE(ExpertsFolder().path(), data + u"/Experts"_s);
    }
};

TAVORAN_TEST(tst_ExpertsFolder)
#include "tst_ExpertsFolder.moc"
