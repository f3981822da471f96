#include "LocaleRows.h"
#include "app/DecimalEdit.h"
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

TAVORAN_TEST_MAIN(TestDecimalEdit)
#include "tst_DecimalEdit.moc"
