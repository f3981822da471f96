#include "support/TestMain.h"

#include <QDirIterator>
#include <QHash>
#include <QLibraryInfo>
#include <QRegularExpression>
#include <QSet>

using namespace Qt::StringLiterals;

/// Holds the house together: which room may know which. A new dependency is a decision, made here.
class tst_IncludeRules final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyRoomIncludesOnlyWhatItMay();
    void everyRoomLinksWhatTheRulesSay();
    void everyFolderWithSourcesIsARoom();
    void everyRoomIncludesOnlyTheQtThatItMay();
    void everyRoomIncludesWhatItLinksOfQt();
    void roomsThatMayNotUseWidgetsArePrecompiledWithoutThem();
    void thePracticePlatformIsIndependent();
    void theBadLineKnowsNoPlatform();
    void theLabIncludesOnlyWhatItMay();
    void theLabStandsOnQtCoreAndQmlAlone();
    void nobodyIncludesTheLab();
    void nobodyNamesTheMainWindow();
    void onlyTheRootsAskForTheSettings();
    void theRulesSeeTheSources();
};

namespace {

const QString& root()
{
    static const QString path = QStringLiteral(PROJECT_ROOT);
    return path;
}

/// What each room below src/ is built on: rooms, and modules of Qt. It may include those, what they are built
/// on, and itself.
const QHash<QString, QSet<QString>>& rules()
{
    static const QHash<QString, QSet<QString>> table{
        {u"app/base"_s, {u"Qt6::Core"_s}},
        {u"app/ui"_s, {u"app/base"_s, u"Qt6::Gui"_s, u"Qt6::Widgets"_s, u"Qt6::Multimedia"_s}},
        {u"net/records"_s, {u"app/base"_s}},
        {u"net"_s, {u"net/records"_s, u"Qt6::Network"_s, u"Qt6::WebSockets"_s}},
        {u"net/signin"_s, {u"net"_s, u"app/ui"_s}},
        {u"app"_s, {u"net"_s, u"app/ui"_s}},
        {u"chart/series"_s, {u"net/records"_s}},
        {u"chart/data"_s, {u"chart/series"_s, u"Qt6::Gui"_s}},
        {u"chart/gestures"_s, {u"chart/data"_s}},
        {u"chart/layers"_s, {u"chart/gestures"_s}},
        {u"experts"_s, {u"chart/series"_s, u"Qt6::Qml"_s}},
        {u"chart/window"_s, {u"chart/layers"_s, u"experts"_s, u"net"_s, u"app/ui"_s}},
        {u"orders"_s, {u"net"_s, u"app/ui"_s}},
        {u"panes"_s, {u"net"_s, u"app/ui"_s}},
        {u"mainwindow/account"_s, {u"net"_s}},
        {u"mainwindow"_s, {u"mainwindow/account"_s, u"chart/window"_s, u"orders"_s, u"panes"_s}},
    };
    return table;
}

QSet<QString> mayInclude(const QString& room)
{
    QSet<QString> all{room};
    for (const QString& below : rules().value(room))
        all.unite(mayInclude(below));
    return all;
}

/// What each room of the lab is built on: others of its rooms, rooms below src/ by their names there, and
/// what of the practice platform. All may include the lab's shared values, none the platform's server.
const QHash<QString, QSet<QString>>& labRules()
{
    static const QHash<QString, QSet<QString>> table{
        {u"lab/core"_s, {}},
        {u"lab/core/market"_s, {}},
        {u"lab/core/account"_s, {u"lab/core/market"_s}},
        {u"lab/core/figures"_s, {}},
        {u"lab/core/output"_s, {u"lab/core/figures"_s}},
        {u"lab/core/session"_s, {}},
        {u"lab/core/study"_s, {u"lab/core/account"_s, u"lab/core/output"_s}},
        {u"lab/run"_s, {u"lab/core/account"_s, u"lab/core/session"_s, u"experts"_s}},
        {u"lab/cli"_s, {u"lab/core/study"_s, u"lab/run"_s}},
    };
    return table;
}

QSet<QString> labMayInclude(const QString& room)
{
    QSet<QString> all{room, u"lab/core"_s};
    for (const QString& below : labRules().value(room))
        all.unite(labRules().contains(below) ? labMayInclude(below) : mayInclude(below));
    return all;
}

QString folderOf(const QString& path)
{
    return path.section(u'/', 0, -2);
}

/// The executable's own file, which stands above every library.
bool isExecutableSource(const QString& path)
{
    return path.endsWith("/app/main.cpp"_L1);
}

struct Include {
    QString file; ///< relative to the project
    QString target;
    bool quoted = false;
};

QList<Include> includesBelow(const QString& folder)
{
    static const QRegularExpression directive(
        uR"(^\s*#\s*include\s*([<"])([^>"]+)[>"])"_s, QRegularExpression::MultilineOption);
    QList<Include> includes;
    QDirIterator files(
        root() + u'/' + folder, {u"*.h"_s, u"*.cpp"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString text = QString::fromUtf8(file.readAll());
        auto match = directive.globalMatch(text);
        while (match.hasNext()) {
            const QRegularExpressionMatch found = match.next();
            includes.append({path.mid(root().size() + 1), found.captured(2), found.captured(1) == u"\""_s});
        }
    }
    return includes;
}

QString cmakeListOf(const QString& room)
{
    QFile list(root() + "/src/"_L1 + room + "/CMakeLists.txt"_L1);
    return list.open(QIODevice::ReadOnly) ? QString::fromUtf8(list.readAll()) : QString();
}

/// What a room's CMake list links, rooms by their path and everything else as it is named.
QSet<QString> linked(const QString& room)
{
    static const QRegularExpression links(uR"(\bLINKS\s+([^)]*)\))"_s);
    static const QRegularExpression blanks(u"\\s+"_s);
    QHash<QString, QString> pathOf;
    for (const QString& known : rules().keys())
        pathOf.insert(QString(known).replace(u'/', u'_'), known);
    QSet<QString> all;
    for (const QString& name : links.match(cmakeListOf(room)).captured(1).split(blanks, Qt::SkipEmptyParts))
        all.insert(pathOf.value(name, name));
    return all;
}

/// The module that a header of Qt belongs to; empty for other headers.
QString moduleOf(const Include& include)
{
    static const QDir headers(QLibraryInfo::path(QLibraryInfo::HeadersPath));
    static const QStringList folders = headers.entryList({u"Qt*"_s}, QDir::Dirs);
    if (include.quoted || !include.target.startsWith(u'Q'))
        return {};
    if (include.target.contains(u'/')) // <QtGui/QColor>
        return u"Qt6::"_s + folderOf(include.target).mid(2);
    for (const QString& folder : folders) {
        if (headers.exists(folder + u'/' + include.target))
            return u"Qt6::"_s + folder.mid(2);
    }
    return {};
}

/// The room that a file lies in, which the file of the executable does not.
QString roomOf(const QString& path)
{
    return isExecutableSource(path) ? QString() : folderOf(path).section(u'/', 1);
}

void reportAll(const QStringList& offences)
{
    QVERIFY2(offences.isEmpty(), qPrintable(u'\n' + offences.join(u'\n')));
}

} // namespace

void tst_IncludeRules::everyRoomIncludesOnlyWhatItMay()
{
    QStringList offences;
    for (const Include& include : includesBelow(u"src"_s)) {
        const QString room = roomOf(include.file);
        if (room.isEmpty() || !include.quoted || !include.target.contains(u'/'))
            continue;
        if (!mayInclude(room).contains(folderOf(include.target)))
            offences.append(include.file + u" must not include "_s + include.target);
    }
    reportAll(offences);
}

void tst_IncludeRules::everyRoomLinksWhatTheRulesSay()
{
    for (auto rule = rules().cbegin(); rule != rules().cend(); ++rule)
        QVERIFY2(linked(rule.key()) == rule.value(), qPrintable(rule.key()));
}

void tst_IncludeRules::everyFolderWithSourcesIsARoom()
{
    for (const Include& include : includesBelow(u"src"_s)) {
        const QString folder = folderOf(include.file).section(u'/', 1);
        QVERIFY2(folder.isEmpty() || rules().contains(folder), qPrintable(include.file));
    }
}

void tst_IncludeRules::everyRoomIncludesOnlyTheQtThatItMay()
{
    QStringList offences;
    for (const Include& include : includesBelow(u"src"_s)) {
        const QString room = roomOf(include.file);
        const QString module = moduleOf(include);
        if (!room.isEmpty() && !module.isEmpty() && !mayInclude(room).contains(module))
            offences.append(include.file + u" must not include "_s + include.target);
    }
    reportAll(offences);
}

void tst_IncludeRules::everyRoomIncludesWhatItLinksOfQt()
{
    QHash<QString, QSet<QString>> used;
    for (const Include& include : includesBelow(u"src"_s))
        used[roomOf(include.file)].insert(moduleOf(include));
    QStringList offences;
    for (const QString& room : rules().keys()) {
        for (const QString& name : linked(room)) {
            if (name.startsWith("Qt6::"_L1) && !used[room].contains(name))
                offences.append(room + u" links "_s + name + u" for nothing"_s);
        }
    }
    reportAll(offences);
}

void tst_IncludeRules::roomsThatMayNotUseWidgetsArePrecompiledWithoutThem()
{
    for (const QString& room : rules().keys()) {
        const bool windowless = cmakeListOf(room).contains(" WINDOWLESS"_L1);
        QVERIFY2(windowless != mayInclude(room).contains(u"Qt6::Widgets"_s), qPrintable(room));
    }
}

void tst_IncludeRules::thePracticePlatformIsIndependent()
{
    static const QRegularExpression qtHeader(u"^(Q[A-Z]|Qt[A-Z])"_s);
    QStringList offences;
    for (const Include& include : includesBelow(u"practice"_s)) {
        const bool own = include.target.startsWith("practice/"_L1) || !include.target.contains(u'/');
        if (qtHeader.match(include.target).hasMatch() || (include.quoted && !own))
            offences.append(include.file + u" must not include "_s + include.target);
    }
    for (const Include& include : includesBelow(u"src"_s)) {
        if (include.target.startsWith("practice/"_L1))
            offences.append(include.file + u" must not include "_s + include.target);
    }
    reportAll(offences);
}

void tst_IncludeRules::theBadLineKnowsNoPlatform()
{
    QStringList offences;
    int seen = 0;
    for (const Include& include : includesBelow(u"practice/line"_s)) {
        ++seen;
        const QString folder = folderOf(include.target);
        if (include.quoted && folder != "practice/line"_L1 && folder != "practice/core/market"_L1)
            offences.append(include.file + u" must not include "_s + include.target);
    }
    QVERIFY(seen > 0);
    reportAll(offences);
}

void tst_IncludeRules::theLabIncludesOnlyWhatItMay()
{
    QStringList offences;
    for (const Include& include : includesBelow(u"lab"_s)) {
        const QString room = folderOf(include.file);
        QVERIFY2(labRules().contains(room), qPrintable(include.file));
        const QSet<QString> allowed = labMayInclude(room);
        const QString module = moduleOf(include);
        const bool isHouse = include.quoted && include.target.contains(u'/');
        const bool isPlatform = include.target.startsWith("practice/core/"_L1);
        if ((isHouse && !isPlatform && !allowed.contains(folderOf(include.target)))
            || (!module.isEmpty() && !allowed.contains(module)))
            offences.append(include.file + u" must not include "_s + include.target);
    }
    reportAll(offences);
}

void tst_IncludeRules::theLabStandsOnQtCoreAndQmlAlone()
{
    QStringList modules;
    for (const QString& name : mayInclude(u"experts"_s)) {
        if (name.startsWith("Qt6::"_L1))
            modules.append(name);
    }
    modules.sort();
    QCOMPARE(modules.join(u' '), u"Qt6::Core Qt6::Qml"_s);

    static const QRegularExpression module(u"Qt6::\\w+"_s);
    QDirIterator lists(root() + "/lab"_L1, {u"CMakeLists.txt"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (lists.hasNext()) {
        QFile list(lists.next());
        QVERIFY(list.open(QIODevice::ReadOnly));
        auto match = module.globalMatch(QString::fromUtf8(list.readAll()));
        while (match.hasNext()) {
            const QString name = match.next().captured();
            QVERIFY2(modules.contains(name), qPrintable(list.fileName() + u' ' + name));
        }
    }
}

void tst_IncludeRules::nobodyIncludesTheLab()
{
    QStringList offences;
    for (const QString& folder : {u"src"_s, u"practice"_s}) {
        for (const Include& include : includesBelow(folder)) {
            if (include.target.startsWith("lab/"_L1))
                offences.append(include.file + u" must not include "_s + include.target);
        }
    }
    reportAll(offences);
}

void tst_IncludeRules::nobodyNamesTheMainWindow()
{
    QStringList offences;
    for (const Include& include : includesBelow(u"src"_s)) {
        const bool owner
            = isExecutableSource(include.file) || include.file.endsWith("mainwindow/MainWindow.cpp"_L1);
        if (include.target == "mainwindow/MainWindow.h"_L1 && !owner)
            offences.append(include.file + u" must not include "_s + include.target);
    }
    reportAll(offences);
}

void tst_IncludeRules::onlyTheRootsAskForTheSettings()
{
    // The theme's functions are asked by whatever paints; nobody could hand them anything.
    const QStringList roots{u"src/app/StartUp.cpp"_s, u"src/app/base/TerminalSettings.cpp"_s,
        u"src/app/main.cpp"_s, u"src/app/ui/Theme.cpp"_s, u"src/mainwindow/MainWindow.cpp"_s};
    QStringList asking;
    QDirIterator files(root() + "/src"_L1, {u"*.h"_s, u"*.cpp"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        QVERIFY(file.open(QIODevice::ReadOnly));
        if (file.readAll().contains("TerminalSettings::instance()"))
            asking.append(file.fileName().mid(root().size() + 1));
    }
    asking.sort();
    QCOMPARE(asking.join(u' '), roots.join(u' '));
}

void tst_IncludeRules::theRulesSeeTheSources()
{
    QVERIFY(includesBelow(u"src"_s).size() > 100);
    QVERIFY(includesBelow(u"practice"_s).size() > 50);
    QVERIFY(includesBelow(u"lab"_s).size() > 20);
    QVERIFY(labMayInclude(u"lab/run"_s).contains(u"chart/series"_s));
    QVERIFY(!labMayInclude(u"lab/core/study"_s).contains(u"Qt6::Core"_s));
    QCOMPARE(moduleOf({{}, u"QWidget"_s}), u"Qt6::Widgets"_s);
    QCOMPARE(moduleOf({{}, u"QtGlobal"_s}), u"Qt6::Core"_s);
    QCOMPARE(moduleOf({{}, u"QtGui/QColor"_s}), u"Qt6::Gui"_s);
}

TAVORAN_TEST(tst_IncludeRules)
#include "tst_IncludeRules.moc"
