#include "app/StartUp.h"
#include "support/TestMain.h"

#include <QGuiApplication>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

QString applicationId()
{
    return u"com.tavoran.Terminal"_s;
}

QString contents(const QString& path)
{
    QFile file(QStringLiteral(PROJECT_ROOT "/packaging/") + path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

} // namespace

/// A desktop knows window, menu entry, icon and description of a program as one only when all have one name.
class tst_ApplicationId final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theWindowsSayWhichDesktopEntryTheyBelongTo()
    {
        nameApplication();
        QCOMPARE(QGuiApplication::desktopFileName(), applicationId());
    }

    void everyFileCallsTheProgramByIt_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("pattern");
        const QString id = applicationId();
        QTest::newRow("icon in the menu") << id + u".desktop"_s << u"^Icon=(.+)$"_s;
        QTest::newRow("for software centres") << id + u".metainfo.xml"_s << u"<id>(.+)</id>"_s;
        QTest::newRow("icon there") << id + u".metainfo.xml"_s << u"<icon type=\"stock\">(.+)</icon>"_s;
        QTest::newRow("entry there") << id + u".metainfo.xml"_s
                                     << u"<launchable type=\"desktop-id\">(.+)\\.desktop</launchable>"_s;
        QTest::newRow("sandbox") << u"flatpak/"_s + id + u".yaml"_s << u"^id: (.+)$"_s;
        QTest::newRow("what is installed") << u"CMakeLists.txt"_s << u"^set\\(APPLICATION_ID (.+)\\)$"_s;
    }
    void everyFileCallsTheProgramByIt()
    {
        QFETCH(QString, path);
        QFETCH(QString, pattern);
        const QRegularExpression expression(pattern, QRegularExpression::MultilineOption);
        QCOMPARE(expression.match(contents(path)).captured(1), applicationId());
    }
};

TAVORAN_TEST(tst_ApplicationId)
#include "tst_ApplicationId.moc"
