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

/// Words that happen to be keys of the wire too.
const QHash<QString, QSet<QString>> namesakes{
    // in states that the terminal saves
    {u"chart/window/ChartState.cpp"_s, {u"color"_s, u"type"_s}},
    {u"mainwindow/ChartsLayout.cpp"_s, {u"symbol"_s}},
    {u"panes/AlertBook.cpp"_s, {u"price"_s, u"symbol"_s}},
    // in paths of requests
    {u"mainwindow/account/AccountLoader.cpp"_s, {u"open"_s}},
    {u"net/TradeRequest.cpp"_s, {u"close"_s}},
    // elsewhere: a line of the settings file, a part of a sound file, what a script throws, names of widgets
    {u"app/base/SettingsStore.cpp"_s, {u"token"_s}},
    {u"app/base/SoundSynthesis.cpp"_s, {u"data"_s}},
    {u"experts/ScriptEngine.cpp"_s, {u"message"_s, u"name"_s}},
    {u"net/signin/LoginDialog.cpp"_s, {u"email"_s, u"password"_s}},
};

QString contentOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QSet<QString> capturedIn(const QString& source, const QRegularExpression& pattern)
{
    QSet<QString> words;
    auto match = pattern.globalMatch(source);
    while (match.hasNext())
        words.insert(match.next().captured(1));
    return words;
}

/// The words that are used as keys of a JSON object.
QSet<QString> keysIn(const QString& source)
{
    static const QRegularExpression use(
        uR"re((?:\[|\bvalue\(|\bconstFind\(|\bcontains\(|\binsert\(|\{|Field\{|Key = )\s*u?"(\w+)"(?:_L1|_s|\}))re"_s);
    return capturedIn(source, use);
}

/// Every word in quotes, texts within texts included, but for those of comments: there are more ways to hand
/// a key on than can be told from other texts.
QSet<QString> wordsIn(QString source)
{
    static const QRegularExpression comment(uR"re((?<!:)//.*)re"_s);
    static const QRegularExpression quoted(uR"re("(\w+)")re"_s);
    return capturedIn(source.remove(comment).remove(u'\\'), quoted);
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
        else
            elsewhere.insert(name, wordsIn(contentOf(path)));
    }
    QVERIFY(wire.contains(u"stopLoss"_s) && wire.contains(u"timestamp"_s) && wire.size() > 50);

    for (auto file = elsewhere.cbegin(); file != elsewhere.cend(); ++file) {
        const QSet<QString> named = file.value() & wire;
        QVERIFY2(named == namesakes.value(file.key()),
            qPrintable(file.key() + u": "_s + QStringList(named.values()).join(u' ')));
    }
}

void TestWireKeys::theSearchFindsAKey_data()
{
    QTest::addColumn<QString>("source");
    QTest::newRow("value") << uR"(record.value("pnl"_L1))"_s;
    QTest::newRow("brackets") << uR"(record["pnl"_L1])"_s;
    QTest::newRow("owned text") << uR"(record[u"pnl"_s])"_s;
    QTest::newRow("insert") << uR"(body.insert("pnl"_L1, 1))"_s;
    QTest::newRow("list") << uR"(QJsonObject{{u"pnl"_s, 1}})"_s;
    QTest::newRow("handed on") << uR"(money(record, "pnl"_L1))"_s;
    QTest::newRow("choice") << uR"(record.value(closed ? "pnl"_L1 : fallback))"_s;
    QTest::newRow("constant") << uR"(constexpr auto field = "pnl"_L1;)"_s;
    QTest::newRow("view") << uR"(record.value(u"pnl"))"_s;
    QTest::newRow("older spellings") << uR"(record.value(QStringLiteral("pnl")))"_s;
    QTest::newRow("written by hand") << uR"(post("{\"pnl\":1}"))"_s;
}

void TestWireKeys::theSearchFindsAKey()
{
    QFETCH(QString, source);
    QCOMPARE(wordsIn(source), QSet<QString>{u"pnl"_s});
}

TAVORAN_TEST(TestWireKeys)
#include "tst_WireKeys.moc"
