#include "app/base/Secrets.h"
#include "app/base/ServerText.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class TestSecrets final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { keepSecret(u"se+cret/token"_s); }

    void a_text_without_a_secret_stays_as_it_is()
    {
        QCOMPARE(maskSecrets(u"<b>%1</b>\nbad and much more"_s), u"<b>%1</b>\nbad and much more"_s);
    }

    void a_secret_is_hidden_plain_and_percent_encoded()
    {
        QCOMPARE(maskSecrets(u"got se+cret/token and se%2Bcret%2Ftoken and Se%2bcret%2ftoken."_s),
            u"got [hidden] and [hidden] and [hidden]."_s);
    }

    void a_secret_that_the_cut_would_split_is_hidden()
    {
        for (int before = 40; before <= 64; ++before) {
            const QString text = shownName(QString(before, u'-') + u"se+cret/token and on"_s);
            QVERIFY2(!text.contains(u"se"_s), qPrintable(text));
        }
    }

    void no_part_of_a_secret_shows_where_others_are_hidden_before_it()
    {
        const QString text = shownName(u"se+cret/token"_s.repeated(40));
        QVERIFY2(!text.contains(u"s"_s), qPrintable(text));
        QVERIFY(text.startsWith(u"[hidden][hidden]"_s));
        QVERIFY(text.endsWith(u'…'));
    }

    void every_shown_text_hides_secrets()
    {
        const QString text = u"a se+cret/token"_s;
        for (const QString& shown :
            {shownName(text), shownSentence(text), shownReason(text), shownEntry(text), balloonText(text)})
            QCOMPARE(shown, u"a [hidden]"_s);
        QCOMPARE(shownName(u"se+cret/token"_s), u"[hidden]"_s);
    }

    void a_long_text_without_a_secret_keeps_its_length()
    {
        QCOMPARE(shownName(QString(1000, u'-')), QString(64, u'-') + u'…');
    }

    void words_shorter_than_six_characters_are_no_secrets()
    {
        keepSecret(u"Conne"_s);
        QCOMPARE(maskSecrets(u"Connection refused"_s), u"Connection refused"_s);
    }
};

TAVORAN_TEST(TestSecrets)
#include "tst_Secrets.moc"
