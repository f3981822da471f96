#include "app/base/Secrets.h"
#include "app/base/ServerText.h"
#include "app/ui/PlainText.h"
#include "support/TestMain.h"

#include <QLabel>
#include <QRegularExpression>
#include <QTextDocument>

using namespace Qt::StringLiterals;

class TestPlainText final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aToolTipHidesSecrets()
    {
        keepSecret(u"se+cret/token"_s);
        QCOMPARE(plainToolTip(u"a se+cret/token"_s), u"a [hidden]"_s);
    }

    void anEndlessToolTipIsCut()
    {
        QCOMPARE(plainToolTip(QString(1'000'000, u'x')), QString(300, u'x') + u'…');
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
        // Either Qt takes it as plain text, or all of the text's own markup is escaped.
        if (Qt::mightBeRichText(tip))
            QCOMPARE(tip.count(u'<'), 2);
        else
            QCOMPARE(tip, text);
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

TAVORAN_TEST(TestPlainText)
#include "tst_PlainText.moc"
