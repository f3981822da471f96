#include "net/SafeText.h"

#include "app/TerminalSettings.h"
#include "support/TestMain.h"

using namespace Qt::StringLiterals;

class TestSafeText final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { TerminalSettings::instance().setToken({}); }
    void leaves_ordinary_text_alone();
    void hides_the_token_plain_and_percent_encoded();
    void hides_a_token_that_the_cut_would_split();
    void cuts_endless_text();
    void never_cuts_a_character_in_half();
    void does_not_look_for_tokens_shorter_than_six_characters();
};

void TestSafeText::leaves_ordinary_text_alone()
{
    TerminalSettings::instance().setToken(u"secret-token"_s);
    QCOMPARE(safeText(u"<b>%1</b>\nbad"_s), u"<b>%1</b>\nbad"_s);
}

void TestSafeText::hides_the_token_plain_and_percent_encoded()
{
    TerminalSettings::instance().setToken(u"se+cret/t"_s);
    QCOMPARE(safeText(u"got se+cret/t and se%2Bcret%2Ft and se%2bcret%2ft."_s),
        u"got [hidden] and [hidden] and [hidden]."_s);
}

void TestSafeText::hides_a_token_that_the_cut_would_split()
{
    TerminalSettings::instance().setToken(u"secret-token"_s);
    const QString text = safeText(QString(4090, u'x') + u"secret-token"_s);
    QVERIFY(!text.contains(u"sec"_s));
    QVERIFY(text.contains(u"[hid"_s));
}

void TestSafeText::cuts_endless_text()
{
    QCOMPARE(safeText(QString(5'000'000, u'x')), QString(4096, u'x') + u'…');
    QCOMPARE(safeText(QString(4096, u'x')), QString(4096, u'x'));
}

void TestSafeText::never_cuts_a_character_in_half()
{
    const QString text = u"ab😀cd"_s;
    QCOMPARE(shortened(text, 2), u"ab…"_s);
    QCOMPARE(shortened(text, 3), u"ab…"_s);
    QCOMPARE(shortened(text, 4), u"ab😀…"_s);
    QCOMPARE(shortened(text, 6), text);
    // Halves that came alone are not ours to mend.
    QCOMPARE(shortened(QString(5, QChar(0xde00)), 2), QString(2, QChar(0xde00)) + u'…');
}

void TestSafeText::does_not_look_for_tokens_shorter_than_six_characters()
{
    TerminalSettings::instance().setToken(u"Conne"_s);
    QCOMPARE(safeText(u"Connection refused"_s), u"Connection refused"_s);
}

TAVORAN_TEST_MAIN(TestSafeText)
#include "tst_SafeText.moc"
