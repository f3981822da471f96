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

/// The version stands in several places that no build step fills in; a release changes them together.
class tst_Version final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theProgramNamesTheVersionOfTheBuild()
    {
        nameApplication();
        QCOMPARE(QCoreApplication::applicationVersion(), versionOfTheBuild());
    }

    void theManualPagesNameIt()
    {
        for (const QString& page : {u"tavoran-terminal"_s, u"tavoran-practice"_s}) {
            QCOMPARE(
                firstFound(u"packaging/"_s + page + u".1"_s, u"^\\.TH .*\"Tavoran Terminal ([^\"]+)\""_s),
                versionOfTheBuild());
        }
    }

    void theNewestReleaseOfTheSoftwareCentreIsIt()
    {
        QCOMPARE(
            firstFound(u"packaging/com.tavoran.Terminal.metainfo.xml"_s, u"<release version=\"([^\"]+)\""_s),
            versionOfTheBuild());
    }
};

TAVORAN_TEST(tst_Version)
#include "tst_Version.moc"
