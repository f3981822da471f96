#include "app/base/Translations.h"
#include "support/TestMain.h"

#include <QFile>
#include <QLibraryInfo>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

QString builtFolder()
{
    return QStringLiteral(TRANSLATIONS_FOLDER);
}

QString newOrder()
{
    return QCoreApplication::translate("TerminalActions", "New Order");
}

QString candlesLoaded(int count)
{
    return QCoreApplication::translate("ChartWindow", "%1,%2: %3 candles loaded", nullptr, count);
}

} // namespace

class TestTranslations : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theFirstWantedLanguageWithTextsIsTaken_data()
    {
        QTest::addColumn<QStringList>("wanted");
        QTest::addColumn<QString>("taken");
        QTest::newRow("the language") << QStringList{u"de"_s} << u"de"_s;
        QTest::newRow("its country") << QStringList{u"de-AT"_s, u"de"_s} << u"de"_s;
        QTest::newRow("its script and country") << QStringList{u"de-Latn-CH"_s} << u"de"_s;
        QTest::newRow("texts of a country") << QStringList{u"pt-BR"_s} << u"pt_BR"_s;
        QTest::newRow("texts of another country") << QStringList{u"pt-PT"_s} << QString();
        QTest::newRow("the second wish") << QStringList{u"fr-FR"_s, u"fr"_s, u"de-DE"_s} << u"de"_s;
        QTest::newRow("English before German") << QStringList{u"en-GB"_s, u"de-DE"_s} << QString();
        QTest::newRow("no language") << QStringList{u"C"_s} << QString();
        QTest::newRow("a language without texts") << QStringList{u"fr-FR"_s, u"fr"_s} << QString();
        QTest::newRow("a name that begins like another") << QStringList{u"den"_s} << QString();
        QTest::newRow("nothing said") << QStringList{} << QString();
        QTest::newRow("an empty name") << QStringList{QString()} << QString();
    }

    void theFirstWantedLanguageWithTextsIsTaken()
    {
        QFETCH(const QStringList, wanted);
        QFETCH(const QString, taken);
        const QTemporaryDir folder;
        for (const auto name : {"de"_L1, "pt_BR"_L1}) {
            QFile file(folder.filePath(u"tavoran-terminal_"_s + name + u".qm"_s));
            QVERIFY(file.open(QIODevice::WriteOnly));
        }
        QCOMPARE(Translations::languageFor(wanted, folder.path()), taken);
    }

    void germanTextsAreShownForAsLongAsTheyAreWanted()
    {
        {
            const Translations german({u"de-DE"_s}, builtFolder());
            QCOMPARE(newOrder(), u"Neue Order"_s);
        }
        QCOMPARE(newOrder(), u"New Order"_s);
    }

    void aPluralIsChosenByItsNumber()
    {
        QCOMPARE(candlesLoaded(1), u"%1,%2: %3 candles loaded"_s);
        const Translations german({u"de"_s}, builtFolder());
        QCOMPARE(candlesLoaded(1), u"%1,%2: %3 Kerze geladen"_s);
        QCOMPARE(candlesLoaded(0), u"%1,%2: %3 Kerzen geladen"_s);
        QCOMPARE(candlesLoaded(500), u"%1,%2: %3 Kerzen geladen"_s);
    }

    void englishTextsAreTheSources()
    {
        const Translations english({u"en-US"_s, u"de"_s}, builtFolder());
        QCOMPARE(newOrder(), u"New Order"_s);
    }

    void whatQtSaysIsInTheSameLanguage()
    {
        const QString catalogue = QLibraryInfo::path(QLibraryInfo::TranslationsPath) + u"/qtbase_de.qm"_s;
        if (!QFile::exists(catalogue))
            QSKIP("Qt's own texts in German are not installed");
        const auto cancel = [] { return QCoreApplication::translate("QPlatformTheme", "Cancel"); };
        {
            const Translations german({u"de"_s}, builtFolder());
            QCOMPARE(cancel(), u"Abbrechen"_s);
        }
        // All in one language: Qt may speak more of them than we do.
        const Translations swedish({u"sv"_s}, builtFolder());
        QCOMPARE(cancel(), u"Cancel"_s);
    }

    void damagedTextsLeaveTheSources()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath(u"tavoran-terminal_de.qm"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("no texts at all");
        file.close();
        const Translations german({u"de"_s}, folder.path());
        QCOMPARE(newOrder(), u"New Order"_s);
    }
};

TAVORAN_TEST(TestTranslations)
#include "tst_Translations.moc"
