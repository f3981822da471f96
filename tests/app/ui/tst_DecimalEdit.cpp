#include "app/LocaleRows.h"
#include "app/ui/DecimalEdit.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QClipboard>
#include <QDoubleValidator>

using namespace Qt::StringLiterals;

class TestDecimalEdit : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() { fixtures::addLocaleRows(); }

    void init()
    {
        QFETCH_GLOBAL(QLocale, locale);
        QLocale::setDefault(locale);
        m_edit = std::make_unique<DecimalEdit>();
        m_edit->show();
    }

    void cleanup()
    {
        m_edit.reset();
        QLocale::setDefault(QLocale::c());
    }

    void anEmptyFieldIsZero() { QCOMPARE(m_edit->value(), 0.0); }

    void aTypedCommaBecomesAPointAtOnce()
    {
        QTest::keyClicks(m_edit.get(), u"1,"_s);
        QCOMPARE(m_edit->text(), u"1."_s);
        QTest::keyClicks(m_edit.get(), u"5"_s);
        QCOMPARE(m_edit->text(), u"1.5"_s);
        QCOMPARE(m_edit->value(), 1.5);
    }

    void aTypedPointIsTheDecimalSign()
    {
        QTest::keyClicks(m_edit.get(), u"1.10250"_s);
        QCOMPARE(m_edit->text(), u"1.10250"_s);
        QCOMPARE(m_edit->value(), 1.1025);
    }

    void keysThatDoNotBelongInOneNumberAreRefused()
    {
        QTest::keyClicks(m_edit.get(), u"-1,2.3,e4x 5"_s);
        QCOMPARE(m_edit->text(), u"1.2345"_s);
    }

    void aNinthDecimalIsRefused()
    {
        QTest::keyClicks(m_edit.get(), u"0.123456789"_s);
        QCOMPARE(m_edit->text(), u"0.12345678"_s);
    }

    void aValueAboveTheRangeIsRefused()
    {
        QTest::keyClicks(m_edit.get(), u"1000000000001"_s);
        QCOMPARE(m_edit->text(), u"100000000000"_s);
        QCOMPARE(m_edit->value(), 1e11);
        QTest::keyClicks(m_edit.get(), u"0"_s);
        QCOMPARE(m_edit->value(), 1e12);
    }

    void aPastedCommaBecomesAPoint()
    {
        QGuiApplication::clipboard()->setText(u"1,5"_s);
        m_edit->paste();
        QCOMPARE(m_edit->text(), u"1.5"_s);
    }

    void whiteSpaceAroundANumberGoes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("blanks") << u"  1.5 "_s;
        QTest::newRow("tabs") << u"\t1.5\t\t"_s;
        QTest::newRow("a line end") << u"1.5\n"_s;
        QTest::newRow("a foreign line end") << u"\r\n1,5\r\n"_s;
        QTest::newRow("no-break spaces") << u"\u00a01,5\u00a0"_s;
        QTest::newRow("narrow no-break spaces") << u"\u202f1.5\u202f"_s;
    }
    void whiteSpaceAroundANumberGoes()
    {
        QFETCH(QString, text);
        m_edit->setText(text);
        QCOMPARE(m_edit->text(), u"1.5"_s);
        QCOMPARE(m_edit->value(), 1.5);

        m_edit->setText(u"0.00"_s);
        m_edit->selectAll();
        QGuiApplication::clipboard()->setText(text);
        m_edit->paste();
        QCOMPARE(m_edit->text(), u"1.5"_s);
        QCOMPARE(m_edit->value(), 1.5);
        QCOMPARE(m_edit->cursorPosition(), 3);

        m_edit->setText(u"0.00"_s);
        hands::drop(*m_edit, text);
        QCOMPARE(m_edit->text(), u"1.5"_s);
        QCOMPARE(m_edit->value(), 1.5);
    }

    void aTypedBlankChangesNothing()
    {
        QTest::keyClicks(m_edit.get(), u"  1.5  "_s);
        QCOMPARE(m_edit->text(), u"1.5"_s);
        m_edit->selectAll();
        QTest::keyClicks(m_edit.get(), u" "_s);
        QCOMPARE(m_edit->text(), u"1.5"_s);
        m_edit->setCursorPosition(1);
        QTest::keyClicks(m_edit.get(), u" "_s);
        QCOMPARE(m_edit->text(), u"1.5"_s);
        m_edit->setCursorPosition(0);
        QTest::keyClicks(m_edit.get(), u" 2"_s);
        QCOMPARE(m_edit->text(), u"21.5"_s);
    }

    void whatIsNoNumberIsDroppedInVain()
    {
        m_edit->setText(u"1.5"_s);
        for (const auto& text :
            {u"1.5 2.5"_s, u"1 000"_s, u"EURUSD"_s, u" "_s, u"1.123456789"_s, u"1e13"_s}) {
            hands::drop(*m_edit, text);
            QCOMPARE(m_edit->text(), u"1.5"_s);
        }
    }

    void aPastedNumberWithGroupsIsRefused_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* text : {"1,234.56", "1.234,56", "1 234", "12abc", "1.5e3"})
            QTest::newRow(text) << QString::fromLatin1(text);
    }
    void aPastedNumberWithGroupsIsRefused()
    {
        QFETCH(QString, text);
        QGuiApplication::clipboard()->setText(text);
        m_edit->paste();
        QCOMPARE(m_edit->text(), QString());
        QCOMPARE(m_edit->value(), 0.0);
    }

    void aPlusSignMayStandInFront()
    {
        QTest::keyClicks(m_edit.get(), u"+1,5"_s);
        QCOMPARE(m_edit->text(), u"+1.5"_s);
        QCOMPARE(m_edit->value(), 1.5);
    }

    void theValidatorTellsItsRange()
    {
        const auto* validator = qobject_cast<const QDoubleValidator*>(m_edit->validator());
        QVERIFY(validator);
        QCOMPARE(validator->bottom(), 0.0);
        QCOMPARE(validator->top(), 1e12);
        QCOMPARE(validator->decimals(), 8);
        QCOMPARE(validator->notation(), QDoubleValidator::StandardNotation);
        QCOMPARE(validator->locale().decimalPoint(), u"."_s);
    }

    void anUnfinishedNumberIsZero()
    {
        QTest::keyClicks(m_edit.get(), u","_s);
        QCOMPARE(m_edit->text(), u"."_s);
        QCOMPARE(m_edit->value(), 0.0);
    }

private:
    std::unique_ptr<DecimalEdit> m_edit;
};

TAVORAN_TEST(TestDecimalEdit)
#include "tst_DecimalEdit.moc"
