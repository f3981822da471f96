#include "support/TestMain.h"

#include <QDirIterator>
#include <QRegularExpression>
#include <QSet>

using namespace Qt::StringLiterals;

/// The server's records are read, and its bodies written, in net/records alone: a key that is misspelt there
/// is wrong in one place, and whoever wants to know what a trade is finds it there.
class TestWireKeys final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noOtherFileNamesAKeyOfTheWire();
    void theSearchFindsAKey_data();
    void theSearchFindsAKey();
};

namespace {

/// States that the terminal saves, which happen to name some fields alike.
const QSet<QString> ownersOfSavedStates{
    u"chart/window/ChartState.cpp"_s, u"mainwindow/ChartsLayout.cpp"_s, u"panes/AlertBook.cpp"_s};

QString contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// The words that are used as keys of a JSON object.
QSet<QString> keysIn(const QString& source)
{
    static const QRegularExpression use(
        uR"re((?:\[|\bvalue\(|\bconstFind\(|\bcontains\(|\binsert\(|\{|Field\{|Key = )\s*u?"(\w+)"(?:_L1|_s|\}))re"_s);
    QSet<QString> keys;
    auto match = use.globalMatch(source);
    while (match.hasNext())
        keys.insert(match.next().captured(1));
    return keys;
}

} // namespace

void TestWireKeys::noOtherFileNamesAKeyOfTheWire()
{
    const QDir sources(QStringLiteral(PROJECT_ROOT "/src"));
    QSet<QString> wire;
    QHash<QString, QSet<QString>> elsewhere;
    QDirIterator files(sources.path(), {u"*.h"_s, u"*.cpp"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        const QString name = sources.relativeFilePath(path);
        if (name.startsWith("net/records/"_L1))
            wire.unite(keysIn(contentOf(path)));
        else if (!ownersOfSavedStates.contains(name))
            elsewhere.insert(name, keysIn(contentOf(path)));
    }
    QVERIFY(wire.contains(u"stopLoss"_s) && wire.contains(u"timestamp"_s) && wire.size() > 50);

    QStringList offences;
    for (auto file = elsewhere.cbegin(); file != elsewhere.cend(); ++file) {
        for (const QString& key : file.value()) {
            if (wire.contains(key))
                offences.append(file.key() + ": "_L1 + key);
        }
    }
    QVERIFY2(offences.isEmpty(), qPrintable(u'\n' + offences.join(u'\n')));
}

void TestWireKeys::theSearchFindsAKey_data()
{
    QTest::addColumn<QString>("source");
    QTest::newRow("value") << uR"(record.value("pnl"_L1))"_s;
    QTest::newRow("brackets") << uR"(record["pnl"_L1])"_s;
    QTest::newRow("owned text") << uR"(record[u"pnl"_s])"_s;
    QTest::newRow("insert") << uR"(body.insert("pnl"_L1, 1))"_s;
    QTest::newRow("list") << uR"(QJsonObject{{u"pnl"_s, 1}})"_s;
}

void TestWireKeys::theSearchFindsAKey()
{
    QFETCH(QString, source);
    QCOMPARE(keysIn(source), QSet<QString>{u"pnl"_s});
}

TAVORAN_TEST(TestWireKeys)
#include "tst_WireKeys.moc"
