#include "support/TestMain.h"

#include <QDirIterator>
#include <QHash>
#include <QRegularExpression>
#include <QSet>

using namespace Qt::StringLiterals;

/// Holds the house together: which folder may include which. A new dependency is a decision, made here.
class tst_IncludeRules final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyFolderIncludesOnlyWhatItMay();
    void theChartsDataKnowsNoWidgets();
    void thePracticePlatformIsIndependent();
    void scriptsSeeTheChartsDataOnly();
    void nobodyNamesTheMainWindow();
    void theRulesSeeTheSources();
};

namespace {

const QHash<QString, QSet<QString>>& allowed()
{
    static const QHash<QString, QSet<QString>> rules{
        {u"app"_s, {u"app"_s}},
        {u"net"_s, {u"app"_s, u"net"_s}},
        {u"experts"_s, {u"app"_s, u"net"_s, u"chart"_s, u"experts"_s}},
        {u"chart"_s, {u"app"_s, u"net"_s, u"chart"_s, u"experts"_s}},
        {u"orders"_s, {u"app"_s, u"net"_s, u"orders"_s}},
        {u"panes"_s, {u"app"_s, u"net"_s, u"panes"_s}},
        {u"mainwindow"_s,
            {u"app"_s, u"net"_s, u"chart"_s, u"experts"_s, u"orders"_s, u"panes"_s, u"mainwindow"_s}},
    };
    return rules;
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
    const QString root = QStringLiteral(PROJECT_ROOT);
    QList<Include> includes;
    QDirIterator files(
        root + u'/' + folder, {u"*.h"_s, u"*.cpp"_s}, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        const QString text = QString::fromUtf8(file.readAll());
        auto match = directive.globalMatch(text);
        while (match.hasNext()) {
            const QRegularExpressionMatch found = match.next();
            includes.append({path.mid(root.size() + 1), found.captured(2), found.captured(1) == u"\""_s});
        }
    }
    return includes;
}

/// The headers of the library `chart_data`, and the two files of the window that need no widget either.
const QStringList& dataFiles()
{
    static const QStringList names{u"Candle"_s, u"CandleSeries"_s, u"ChartColors"_s, u"ChartGestures"_s,
        u"ChartLook"_s, u"ChartScene"_s, u"ChartTexts"_s, u"ChartType"_s, u"ChartView"_s, u"Drawing"_s,
        u"DrawingGeometry"_s, u"DrawingKind"_s, u"DrawingList"_s, u"DrawingTool"_s, u"GridSteps"_s,
        u"HistoryReply"_s, u"IndicatorCache"_s, u"Indicators"_s, u"LevelDrag"_s, u"MovingAverageSpec"_s,
        u"PanZoom"_s, u"Timeframe"_s, u"TradeLevel"_s, u"TradeLevels"_s, u"ViewState"_s};
    return names;
}

void reportAll(const QStringList& offences)
{
    QVERIFY2(offences.isEmpty(), qPrintable(u'\n' + offences.join(u'\n')));
}

} // namespace

void tst_IncludeRules::everyFolderIncludesOnlyWhatItMay()
{
    QStringList offences;
    for (const Include& include : includesBelow(u"src"_s)) {
        const QString from = include.file.section(u'/', 1, 1);
        const QString to = include.target.section(u'/', 0, 0);
        if (!include.quoted || !include.target.contains(u'/') || isExecutableSource(include.file))
            continue;
        if (!allowed().value(from).contains(to))
            offences.append(include.file + u" must not include "_s + include.target);
    }
    reportAll(offences);
}

void tst_IncludeRules::theChartsDataKnowsNoWidgets()
{
    QStringList offences;
    for (const Include& include : includesBelow(u"src/chart"_s)) {
        const QString name = include.file.section(u'/', -1).section(u'.', 0, 0);
        if (dataFiles().contains(name)
            && (include.target.contains("Widget"_L1) || include.target == "QPainter"_L1))
            offences.append(include.file + u" must not include "_s + include.target);
    }
    reportAll(offences);
}

void tst_IncludeRules::scriptsSeeTheChartsDataOnly()
{
    QStringList offences;
    for (const Include& include : includesBelow(u"src/experts"_s)) {
        const QString name = include.target.section(u'/', -1).section(u'.', 0, 0);
        if (include.target.startsWith("chart/"_L1) && !dataFiles().contains(name))
            offences.append(include.file + u" must not include "_s + include.target);
    }
    reportAll(offences);
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

void tst_IncludeRules::theRulesSeeTheSources()
{
    QVERIFY(includesBelow(u"src"_s).size() > 100);
    QVERIFY(includesBelow(u"practice"_s).size() > 50);
}

TAVORAN_TEST_MAIN(tst_IncludeRules)
#include "tst_IncludeRules.moc"
