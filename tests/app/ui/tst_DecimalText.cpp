#include "app/ui/DecimalText.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class TestDecimalText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void oneNumberIsReadWithPointOrComma_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<double>("value");
        QTest::newRow("point") << u"1.5"_s << 1.5;
        QTest::newRow("comma") << u"1,5"_s << 1.5;
        QTest::newRow("blanks around") << u" 1.25\t"_s << 1.25;
        QTest::newRow("leading sign") << u".5"_s << 0.5;
        QTest::newRow("trailing sign") << u"5,"_s << 5.0;
        QTest::newRow("negative") << u"-3"_s << -3.0;
        QTest::newRow("plus") << u"+0.01"_s << 0.01;
        QTest::newRow("comma is never a group") << u"1,234"_s << 1.234;
    }
    void oneNumberIsReadWithPointOrComma()
    {
        QFETCH(QString, text);
        QFETCH(double, value);
        QLocale::setDefault(QLocale(QLocale::German));
        QCOMPARE(parseDecimal(text), std::optional(value));
        QLocale::setDefault(QLocale::c());
    }

    void whatIsNotOneNumberIsRefused_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* text : {"", " ", ".", "-", "1.2.3", "1,234.56", "1.234,56", "1 000", "1e5", "nan",
                 "inf", "0x10", "12abc", "--1", "1-", "1.5 2.5"})
            QTest::newRow(text) << QString::fromLatin1(text);
        QTest::newRow("arabic digits") << u"\u0661\u0662"_s;
        QTest::newRow("minus sign character") << u"\u22121"_s;
        QTest::newRow("four hundred digits") << QString(400, u'9');
    }
    void whatIsNotOneNumberIsRefused()
    {
        QFETCH(QString, text);
        QVERIFY(!parseDecimal(text));
    }

    void typingIsJudgedKeyByKey_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("state");
        const auto row = [](const char* text, QValidator::State state) {
            QTest::newRow(text) << QString::fromLatin1(text) << static_cast<int>(state);
        };
        row("", QValidator::Intermediate);
        row(".", QValidator::Intermediate);
        row("0", QValidator::Intermediate);
        row("0.0", QValidator::Intermediate);
        row("0.01", QValidator::Acceptable);
        row("0,01", QValidator::Acceptable);
        row("100", QValidator::Acceptable);
        row("100.01", QValidator::Invalid);
        row("101", QValidator::Invalid);
        row("0.001", QValidator::Invalid);
        row("-", QValidator::Invalid);
        row("-1", QValidator::Invalid);
        row("1.1.", QValidator::Invalid);
        row("1,1.", QValidator::Invalid);
        row("1a", QValidator::Invalid);
    }
    void typingIsJudgedKeyByKey()
    {
        QFETCH(QString, text);
        QFETCH(int, state);
        QCOMPARE(static_cast<int>(decimalState(text, 0.01, 100.0, 2)), state);
    }

    void aNegativeRangeTakesTheMinusSign()
    {
        QCOMPARE(decimalState(u"-"_s, -5.0, 5.0, 1), QValidator::Intermediate);
        QCOMPARE(decimalState(u"-5"_s, -5.0, 5.0, 1), QValidator::Acceptable);
        QCOMPARE(decimalState(u"-6"_s, -5.0, 5.0, 1), QValidator::Invalid);
    }
};

TAVORAN_TEST(TestDecimalText)
#include "tst_DecimalText.moc"
