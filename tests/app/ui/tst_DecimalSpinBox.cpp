#include "app/LocaleRows.h"
#include "app/ui/DecimalSpinBox.h"
#include "support/Hands.h"
#include "support/TestMain.h"

#include <QClipboard>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

class TestDecimalSpinBox : public QObject {
    Q_OBJECT

    static void type(DecimalSpinBox& box, const QString& keys)
    {
        box.selectAll();
        QTest::keyClicks(&box, keys);
    }

    static void paste(DecimalSpinBox& box, const QString& text)
    {
        QGuiApplication::clipboard()->setText(text);
        box.selectAll();
        box.findChild<QLineEdit*>()->paste();
    }

private Q_SLOTS:
    void initTestCase_data() { fixtures::addLocaleRows(); }

    void init()
    {
        QFETCH_GLOBAL(QLocale, locale);
        QLocale::setDefault(locale);
        m_box = std::make_unique<DecimalSpinBox>();
        m_box->setDecimals(5);
        m_box->setRange(0.0, 1000000.0);
        m_box->show();
    }

    void cleanup()
    {
        m_box.reset();
        QLocale::setDefault(QLocale::c());
    }

    void aTypedPointIsTheDecimalSign()
    {
        type(*m_box, u"1.5"_s);
        QCOMPARE(m_box->text(), u"1.5"_s);
        QCOMPARE(m_box->value(), 1.5);
    }

    void aTypedCommaIsShownAsAPointAtOnce()
    {
        type(*m_box, u"1,"_s);
        QCOMPARE(m_box->text(), u"1."_s);
        QTest::keyClicks(m_box.get(), u"5"_s);
        QCOMPARE(m_box->text(), u"1.5"_s);
        QTest::keyClick(m_box.get(), Qt::Key_Return);
        QCOMPARE(m_box->value(), 1.5);
        QCOMPARE(m_box->text(), u"1.50000"_s);
    }

    void aSecondDecimalSignIsRefused()
    {
        type(*m_box, u"1,2,3.4"_s);
        QCOMPARE(m_box->text(), u"1.234"_s);
        QCOMPARE(m_box->value(), 1.234);
    }

    void lettersAndExponentsAreRefused()
    {
        type(*m_box, u"1e5x 7"_s);
        QCOMPARE(m_box->text(), u"157"_s);
    }

    void moreDecimalsThanTheSymbolHasAreRefused()
    {
        m_box->setDecimals(2);
        type(*m_box, u"1.239"_s);
        QCOMPARE(m_box->text(), u"1.23"_s);
        QCOMPARE(m_box->value(), 1.23);
    }

    void aPastedCommaBecomesAPoint()
    {
        paste(*m_box, u"1,10250"_s);
        QCOMPARE(m_box->value(), 1.1025);
        QCOMPARE(m_box->text(), u"1.10250"_s);
    }

    void whiteSpaceAroundANumberGoes_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("blanks") << u"  2.25 "_s;
        QTest::newRow("tabs") << u"\t2.25\t\t"_s;
        QTest::newRow("a line end") << u"2.25\n"_s;
        QTest::newRow("a foreign line end") << u"\r\n2,25\r\n"_s;
        QTest::newRow("no-break spaces") << u"\u00a02,25\u00a0"_s;
    }
    void whiteSpaceAroundANumberGoes()
    {
        QFETCH(QString, text);
        auto* edit = m_box->findChild<QLineEdit*>();
        for (const bool framed : {false, true}) {
            m_box->setPrefix(framed ? u"ca, "_s : QString());
            m_box->setSuffix(framed ? u" lots"_s : QString());
            const QString shown = framed ? u"ca, 2.25 lots"_s : u"2.25"_s;
            m_box->setValue(7.0);
            paste(*m_box, text);
            QCOMPARE(m_box->text(), shown);
            QCOMPARE(m_box->value(), 2.25);
            m_box->setValue(7.0);
            hands::drop(*edit, text);
            QCOMPARE(m_box->text(), shown);
            QCOMPARE(m_box->value(), 2.25);
            m_box->setValue(7.0);
            edit->setText(text);
            QCOMPARE(m_box->value(), 2.25);
        }
    }

    void aTypedBlankChangesNothing()
    {
        type(*m_box, u"  2.25  "_s);
        QCOMPARE(m_box->text(), u"2.25"_s);
        m_box->selectAll();
        QTest::keyClicks(m_box.get(), u" "_s);
        QCOMPARE(m_box->text(), u"2.25"_s);
        QCOMPARE(m_box->value(), 2.25);
    }

    void theWheelTurnsTheValueOnlyWhileTheBoxHasTheFocus()
    {
        QWidget window;
        auto* column = new QVBoxLayout(&window);
        auto* edit = new QLineEdit;
        auto* box = new DecimalSpinBox;
        column->addWidget(edit);
        column->addWidget(box);
        window.show();
        QVERIFY(hands::arriveAt(&window));
        edit->setFocus();
        hands::turnWheel(*box, 120);
        hands::turnWheel(*box->findChild<QLineEdit*>(), 120);
        QCOMPARE(box->value(), 0.0);
        QVERIFY(edit->hasFocus());
        box->setFocus();
        hands::turnWheel(*box, 120);
        QCOMPARE(box->value(), 1.0);
        hands::turnWheel(*box->findChild<QLineEdit*>(), 120);
        QCOMPARE(box->value(), 2.0);
    }

    void aPastedNumberWithGroupsIsRefused_data()
    {
        QTest::addColumn<QString>("text");
        for (const char* text : {"1,234.56", "1.234,56", "1 234.56", "1'234.56", "12 abc", "1.1\n2.2"})
            QTest::newRow(text) << QString::fromLatin1(text);
    }
    void aPastedNumberWithGroupsIsRefused()
    {
        QFETCH(QString, text);
        m_box->setValue(7.0);
        paste(*m_box, text);
        QCOMPARE(m_box->value(), 7.0);
    }

    void valuesAreShownWithPointAndWithoutGroups()
    {
        m_box->setDecimals(2);
        m_box->setValue(123456.7);
        QCOMPARE(m_box->text(), u"123456.70"_s);
        m_box->stepUp();
        QCOMPARE(m_box->text(), u"123457.70"_s);
    }

    void anUnfinishedTextFallsBackToTheLastValue()
    {
        m_box->setValue(2.5);
        type(*m_box, u","_s);
        QTest::keyClick(m_box.get(), Qt::Key_Return);
        QCOMPARE(m_box->value(), 2.5);
    }

    void theMinimumIsReachedKeyByKey()
    {
        m_box->setDecimals(2);
        m_box->setRange(0.01, 100.0);
        type(*m_box, u"0,05"_s);
        QCOMPARE(m_box->value(), 0.05);
    }

    void prefixAndSuffixStayUntouched()
    {
        m_box->setDecimals(2);
        m_box->setPrefix(u"ca, "_s);
        m_box->setSuffix(u" lots, max"_s);
        m_box->setValue(1.5);
        QCOMPARE(m_box->text(), u"ca, 1.50 lots, max"_s);
        QString input = u"ca, 2,25 lots, max"_s;
        int position = 6;
        QCOMPARE(m_box->validate(input, position), QValidator::Acceptable);
        QCOMPARE(input, u"ca, 2.25 lots, max"_s);
        QCOMPARE(m_box->valueFromText(input), 2.25);
    }

private:
    std::unique_ptr<DecimalSpinBox> m_box;
};

TAVORAN_TEST(TestDecimalSpinBox)
#include "tst_DecimalSpinBox.moc"
