#include "app/FileFixture.h"
#include "app/base/SettingsValues.h"
#include "support/TestMain.h"

#include <QSettings>
#include <QtTest>

using namespace Qt::StringLiterals;

class TestSettingsValues final : public QObject {
    Q_OBJECT

    static QByteArray geometry(char last) { return QByteArray::fromHex("01d9d0cb00ff") + last; }

    /// As another process reads them: nothing here has the file in memory.
    SettingsValues readBack(const QVariant& value)
    {
        const QString written = m_folder.filePath(u"%1.written"_s.arg(++m_files));
        {
            QSettings settings(written, QSettings::IniFormat);
            settings.setValue("a/value", value);
        }
        const QString read = written + u".read"_s;
        if (!QFile::copy(written, read))
            return {};
        return settingsValues(QSettings(read, QSettings::IniFormat));
    }

    /// As they are while nothing has been read.
    SettingsValues justSet(const QVariant& value)
    {
        QSettings settings(m_folder.filePath(u"%1.set"_s.arg(++m_files)), QSettings::IniFormat);
        settings.setValue("a/value", value);
        return settingsValues(settings);
    }

    QTemporaryDir m_folder;
    int m_files = 0;

private Q_SLOTS:
    void values_that_differ_are_told_apart_data()
    {
        QTest::addColumn<QVariant>("one");
        QTest::addColumn<QVariant>("other");
        const auto row = [](const char* name, const QVariant& one, const QVariant& other) {
            QTest::newRow(name) << one << other;
        };
        row("texts", u"dark"_s, u"light"_s);
        row("bytes that are no text", geometry('\xfe'), geometry('\xff'));
        row("bytes and what they read as", QByteArray("\xff"), QByteArray("\xef\xbf\xbd"));
        row("bytes and a text", QByteArray("a"), u"a"_s);
        row("lists of texts", QStringList{u"a"_s, u"b"_s}, QStringList{u"a"_s, u"c"_s});
        row("lists cut elsewhere", QStringList{u"a"_s, u"bc"_s}, QStringList{u"ab"_s, u"c"_s});
        row("lists of bytes", QVariantList{geometry('\xfe'), 1}, QVariantList{geometry('\xff'), 1});
        row("a list and nothing", QStringList{u"a"_s, u"b"_s}, QString());
    }
    void values_that_differ_are_told_apart()
    {
        QFETCH(QVariant, one);
        QFETCH(QVariant, other);
        QVERIFY(justSet(one) != justSet(other));
        QVERIFY(readBack(one) != readBack(other));
        QVERIFY(digestOf(justSet(one)) != digestOf(justSet(other)));
        QVERIFY(digestOf(readBack(one)) != digestOf(readBack(other)));
    }

    void a_value_just_set_equals_the_same_read_from_a_file_data()
    {
        QTest::addColumn<QVariant>("value");
        QByteArray all;
        for (int byte = 0; byte < 256; ++byte)
            all += static_cast<char>(byte);
        QTest::newRow("text") << QVariant(u"x, y; z=1\n\"— ü @ByteArray(a)"_s);
        QTest::newRow("empty text") << QVariant(QString());
        QTest::newRow("at") << QVariant(u"@at"_s);
        QTest::newRow("yes or no") << QVariant(true);
        QTest::newRow("number") << QVariant(-17);
        QTest::newRow("decimal") << QVariant(1.25);
        QTest::newRow("all bytes") << QVariant(all);
        QTest::newRow("no bytes") << QVariant(QByteArray(""));
        QTest::newRow("absent bytes") << QVariant(QByteArray());
        QTest::newRow("no list") << QVariant(QStringList());
        QTest::newRow("list of one") << QVariant(QStringList{u"a"_s});
        QTest::newRow("list") << QVariant(QStringList{u"a"_s, QString(), u"ü"_s});
        QTest::newRow("list of bytes") << QVariant(QVariantList{all, 1, u"a"_s});
        QTest::newRow("list of one with bytes") << QVariant(QVariantList{all});
        QTest::newRow("list within a list") << QVariant(QVariantList{QVariant(QVariantList{1, 2}), all});
    }
    void a_value_just_set_equals_the_same_read_from_a_file()
    {
        QFETCH(QVariant, value);
        QCOMPARE(readBack(value), justSet(value));
        QCOMPARE(readBack(value).size(), 1);
        QCOMPARE(digestOf(readBack(value)), digestOf(justSet(value)));
    }
};

TAVORAN_TEST(TestSettingsValues)
#include "tst_SettingsValues.moc"
