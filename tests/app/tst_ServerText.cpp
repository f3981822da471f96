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

    void anEndlessTextIsCutByItsKind()
    {
        const QString endless(1'000'000, u'x');
        QCOMPARE(shownName(endless), QString(64, u'x') + u'…');
        QCOMPARE(shownSentence(endless), QString(300, u'x') + u'…');
        QCOMPARE(shownReason(endless), QString(300, u'x') + u'…');
        QCOMPARE(shownEntry(endless), QString(8192, u'x') + u'…');
        QCOMPARE(plainToolTip(endless), QString(300, u'x') + u'…');
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

    void aLabelCanWrapAReasonThatIsOneWord()
    {
        QLabel label;
        makePlain(&label);
        label.setWordWrap(true);
        showReason(label, QString(100'000, u'W'));
        QVERIFY2(label.minimumSizeHint().width() < 400,
            qPrintable(QString::number(label.minimumSizeHint().width())));
        QCOMPARE(label.text().remove(QChar(0x200b)), QString(300, u'W') + u'…');
    }

    void noCharacterOfALongWordIsWrappedInHalf()
    {
        QLabel label;
        showReason(label, u'a' + u"𝐖"_s.repeated(100));
        QStringList parts = label.text().split(QChar(0x200b));
        QVERIFY(parts.size() > 2);
        for (const QString& part : std::as_const(parts))
            QVERIFY(!part.front().isLowSurrogate() && !part.back().isHighSurrogate());
    }

    void aLabelShowsAnOrdinaryReasonAsGiven_data()
    {
        QTest::addColumn<QString>("reason");
        QTest::newRow("address")
            << u"Error transferring https://terminal.tavoran.example:5001/api/trades - refused"_s;
        QTest::newRow("code") << u"POSITION_SIZE_EXCEEDS_LIMIT_OF_PLAN"_s;
        QTest::newRow("mail") << u"No account of first.second-name@trading.example"_s;
    }
    void aLabelShowsAnOrdinaryReasonAsGiven()
    {
        QFETCH(QString, reason);
        QLabel label;
        showReason(label, reason);
        QCOMPARE(label.text(), reason);
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
