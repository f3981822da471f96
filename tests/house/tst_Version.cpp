#include "app/StartUp.h"
#include "support/TestMain.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

QString versionOfTheBuild()
{
    return QStringLiteral(PROJECT_VERSION);
}

/// What the pattern's group finds in a file of the project; empty when there is no such place.
QString firstFound(const QString& path, const QString& pattern)
{
    QFile file(QStringLiteral(PROJECT_ROOT) + u'/' + path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
    return expression.match(QString::fromUtf8(file.readAll())).captured(1);
}

} // namespace

/// The version stands in the project's CMake list, from which programs and manual pages have it. A release is
/// also written down where its changes are told and what it understands on the wire.
class tst_Version final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theProgramNamesTheVersionOfTheBuild()
    {
        nameApplication();
        QCOMPARE(QCoreApplication::applicationVersion(), versionOfTheBuild());
    }

    void theManualPagesHaveItFromTheBuild()
    {
        for (const QString& page : {u"tavoran-terminal"_s, u"tavoran-practice"_s, u"tavoran-lab"_s}) {
            QCOMPARE(
                firstFound(u"packaging/"_s + page + u".1.in"_s, u"^\\.TH .*\"Tavoran Terminal ([^\"]+)\""_s),
                u"@PROJECT_VERSION@"_s);
        }
    }

    void itIsTheNewestReleaseThatIsWrittenDown_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("pattern");
        QTest::newRow("for software centres")
            << u"packaging/com.tavoran.Terminal.metainfo.xml"_s << u"<release version=\"([^\"]+)\""_s;
        QTest::newRow("packages") << u"packaging/debian/changelog"_s << u"^tavoran \\(([0-9.]+)-"_s;
        QTest::newRow("change log") << u"CHANGELOG.md"_s << u"^## \\[([0-9.]+)\\]"_s;
        QTest::newRow("requests") << u"docs/openapi.yaml"_s << u"^  version: (.+)$"_s;
        QTest::newRow("feed") << u"docs/asyncapi.yaml"_s << u"^  version: (.+)$"_s;
    }
    void itIsTheNewestReleaseThatIsWrittenDown()
    {
        QFETCH(QString, path);
        QFETCH(QString, pattern);
        QCOMPARE(firstFound(path, pattern), versionOfTheBuild());
    }
};

TAVORAN_TEST(tst_Version)
#include "tst_Version.moc"
