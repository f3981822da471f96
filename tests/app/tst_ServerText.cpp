#include "app/ServerText.h"
#include "support/TestMain.h"

#include <QLabel>
#include <QRegularExpression>
#include <QTextDocument>

using namespace Qt::StringLiterals;

class TestServerText : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void controlCharactersAndLineSeparatorsBecomeOneBlankEach()
    {
        QCOMPARE(oneLine(u"a\r\nb\tc\u2028d\u2029e\u0085f\u001b[0m"_s), u"a  b c d e f [0m"_s);
        QCOMPARE(oneLine(u"Zażółć 100 % — ok"_s), u"Zażółć 100 % — ok"_s);
        QCOMPARE(oneLine(QString(u'\0')), u" "_s);
    }

    void aToolTipShowsMarkupAsItIs()
    {
        const QString evil = u"<img src='file:///etc/passwd'>&amp;<b>x</b>"_s;
        const QString tip = plainToolTip(evil);
        QTextDocument document;
        document.setHtml(tip);
        QCOMPARE(document.toPlainText(), evil);
        QVERIFY(!tip.contains("<img"_L1));
        QVERIFY(!tip.contains("<b>"_L1));
    }

    void aToolTipWithoutMarkupStaysAsItIs_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("words") << u"Euro vs US Dollar"_s;
        QTest::newRow("ampersand") << u"S&P 500 &amp; more"_s;
        QTest::newRow("comparison") << u"bid < ask"_s;
    }
    void aToolTipWithoutMarkupStaysAsItIs()
    {
        QFETCH(QString, text);
        const QString tip = plainToolTip(text);
        QVERIFY(!Qt::mightBeRichText(tip));
        QCOMPARE(tip, text);
    }

    void everyToolTipThatActsAsMarkupIsEscaped_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("tag") << u"<table><table>"_s;
        QTest::newRow("escaped tag") << u"&lt;b&gt;"_s;
        QTest::newRow("late tag") << u"gold <b>rises</b>"_s;
        QTest::newRow("leading blanks") << u"  <a href='x'>y</a>"_s;
        QTest::newRow("after a line") << u"first\n<img src=x>"_s;
    }
    void everyToolTipThatActsAsMarkupIsEscaped()
    {
        QFETCH(QString, text);
        const QString tip = plainToolTip(text);
        // Either the toolkit takes it as plain text, or all of the text's own markup is escaped.
        if (Qt::mightBeRichText(tip))
            QCOMPARE(tip.count(u'<'), 2);
        else
            QCOMPARE(tip, text);
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

    void aTagInABalloonIsDefused_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("link") << u"<a href='x'>1 < 2</a> & more"_s;
        QTest::newRow("picture") << u"see <img src='file:///x'>"_s;
        QTest::newRow("capital") << u"<B>x"_s;
        QTest::newRow("end only") << u"x</b>"_s;
        QTest::newRow("beyond ASCII") << u"<ö>"_s;
        QTest::newRow("one in the other") << u"<<b>>"_s;
        QTest::newRow("twice") << u"<b><i>"_s;
    }
    void aTagInABalloonIsDefused()
    {
        QFETCH(QString, text);
        const QString shown = balloonText(text);
        QVERIFY(!Qt::mightBeRichText(shown));
        QVERIFY(!shown.contains(QRegularExpression(u"<[\\p{L}/]"_s)));
        // To the eye it is the text as given: what was added has no width.
        QCOMPARE(QString(shown).remove(QChar(0x200b)), text);
    }

    void menuTextDoublesAmpersandsAndStaysOnOneLine()
    {
        QCOMPARE(menuText(u"S&P\n\"500\"\tF9"_s), u"S&&P \"500\" F9"_s);
    }

    void aPlainLabelShowsMarkupAsCharacters()
    {
        const QScopedPointer<QLabel> label(plainLabel(u"<b>x</b>"_s));
        QCOMPARE(label->textFormat(), Qt::PlainText);
        QCOMPARE(label->text(), u"<b>x</b>"_s);
        label->setText(u"<i>y</i>"_s);
        QCOMPARE(label->textFormat(), Qt::PlainText);
    }

    void anExistingLabelCanBeMadePlain()
    {
        QLabel label;
        makePlain(&label);
        QCOMPARE(label.textFormat(), Qt::PlainText);
    }
};

TAVORAN_TEST_MAIN(TestServerText)
#include "tst_ServerText.moc"
