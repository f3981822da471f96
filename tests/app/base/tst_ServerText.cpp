#include "app/base/ServerText.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class TestServerText final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void controlCharactersAndLineSeparatorsBecomeOneBlankEach()
    {
        QCOMPARE(oneLine(u"a\r\nb\tc\u2028d\u2029e\u0085f\u001b[0m"_s), u"a  b c d e f [0m"_s);
        QCOMPARE(oneLine(u"Zażółć 100 % — ok"_s), u"Zażółć 100 % — ok"_s);
        QCOMPARE(oneLine(QString(u'\0')), u" "_s);
    }

    void anEndlessTextIsCutByItsKind()
    {
        const QString endless(1'000'000, u'x');
        QCOMPARE(shownName(endless), QString(64, u'x') + u'…');
        QCOMPARE(shownSentence(endless), QString(300, u'x') + u'…');
        QCOMPARE(shownReason(endless), QString(300, u'x') + u'…');
        QCOMPARE(shownEntry(endless), QString(8192, u'x') + u'…');
        QCOMPARE(balloonText(endless), QString(300, u'x') + u'…');
    }

    void aTextOfOrdinaryLengthIsShownWhole()
    {
        QCOMPARE(shownName(QString(64, u'x')), QString(64, u'x'));
        QCOMPARE(shownSentence(QString(300, u'x')), QString(300, u'x'));
        QCOMPARE(shownName(u"a\nb"_s), u"a b"_s);
        QCOMPARE(shownSentence(u"a\nb"_s), u"a b"_s);
        QCOMPARE(shownName({}), QString());
    }

    void noCharacterIsCutInHalf()
    {
        const QString text = u"ab😀cd"_s;
        QCOMPARE(shortened(text, 2), u"ab…"_s);
        QCOMPARE(shortened(text, 3), u"ab…"_s);
        QCOMPARE(shortened(text, 4), u"ab😀…"_s);
        QCOMPARE(shortened(text, 6), text);
        // Halves that came alone are not ours to mend.
        QCOMPARE(shortened(QString(5, QChar(0xde00)), 2), QString(2, QChar(0xde00)) + u'…');
        QCOMPARE(shownName(QString(63, u'x') + u"😀 and on"_s), QString(63, u'x') + u'…');
    }

    void aReasonKeepsItsFirstLines_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("shown");
        QTest::newRow("none") << QString() << QString();
        QTest::newRow("one") << u"No money"_s << u"No money"_s;
        QTest::newRow("four") << u"a\nb\r\nc\u2028d"_s << u"a\nb\nc\nd"_s;
        QTest::newRow("five") << u"a\nb\nc\nd\ne"_s << u"a\nb\nc\nd…"_s;
        QTest::newRow("blank lines") << u"\n\na\n \n\nb\n"_s << u"a\nb"_s;
        QTest::newRow("blank lines without end") << QString(5000, u'\n') + u'a' << u"a"_s;
        QTest::newRow("nothing but blank") << u" \n "_s << u"…"_s;
        QTest::newRow("blank for too long") << u"a"_s + QString(5000, u'\n') + u'b' << u"a\n…"_s;
    }
    void aReasonKeepsItsFirstLines()
    {
        QFETCH(QString, text);
        QTEST(shownReason(text), "shown");
        QCOMPARE(shownReason(shownReason(text)), shownReason(text));
    }

    void aBalloonShowsTheTextAsGiven_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("comparison") << u"CPI < 2 > 1 <3 <= 4"_s;
        QTest::newRow("last sign") << u"a <"_s;
        QTest::newRow("arrows") << u"<- up -> down <-> <<>>"_s;
        QTest::newRow("entities") << u"S&P 500 &amp; more &lt;b&gt;"_s;
    }
    void aBalloonShowsTheTextAsGiven()
    {
        QFETCH(QString, text);
        QCOMPARE(balloonText(text), text);
    }

    void menuTextDoublesAmpersandsAndStaysOnOneLine()
    {
        QCOMPARE(menuText(u"S&P\n\"500\"\tF9"_s), u"S&&P \"500\" F9"_s);
    }
};

TAVORAN_TEST(TestServerText)
#include "tst_ServerText.moc"
