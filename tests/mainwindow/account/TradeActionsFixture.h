#pragma once

#include "mainwindow/account/AccountBook.h"
#include "mainwindow/account/TradeActions.h"
#include "support/Records.h"
#include "support/ServedClient.h"

Q_DECLARE_METATYPE(StubAnswer)

/// What the tests of trades asked for by traders and by experts share.
namespace fixtures {

using namespace Qt::StringLiterals;

inline const QByteArray placePath = "/api/trades/place";
inline const QString timedOut = u"no answer; the order may have been carried out"_s;
inline const QStringList everything{u"accounts"_s, u"trades"_s, u"history"_s};

inline QString sound(SoundKind kind)
{
    return u"sound %1"_s.arg(int(kind));
}

/// The actions over a scripted server, with all that they say.
struct ActingDesk : ServedClient {
    AccountBook book;
    TradeActions actions{api, book};
    QStringList said; ///< Journal and Experts lines, sounds and refreshes in their order

    ActingDesk()
    {
        book.selectAccount(u"acc-1"_s);
        book.setTrades(
            {records::position("t1").buy(1).stopLoss("1.05").takeProfit(0),
                records::position("t2").symbol("GOLD"), records::position("t3"), records::position("t4"),
                records::position("t5").symbol("eurusd"), records::position("").symbol("OIL")},
            {records::pendingOrder("p1").stopLoss(1.0).awaits("1.1"),
                records::pendingOrder("..").symbol("X")});
        const auto note = [this](const QString& text) { said.append(text); };
        const auto line = [note](const QString& tab) {
            return [note, tab](const QString& source, const QString& message) {
                note(u"%1 %2: %3"_s.arg(tab, source, message));
            };
        };
        const auto hear
            = [this](auto signal, auto tell) { QObject::connect(&actions, signal, &actions, tell); };
        hear(&TradeActions::journalLine, line(u"J"_s));
        hear(&TradeActions::expertLine, line(u"E"_s));
        hear(&TradeActions::soundWanted, [note](SoundKind kind) { note(sound(kind)); });
        hear(&TradeActions::accountsRefreshWanted, [note] { note(u"accounts"_s); });
        hear(&TradeActions::tradesRefreshWanted, [note] { note(u"trades"_s); });
        hear(&TradeActions::historyRefreshWanted, [note] { note(u"history"_s); });
    }

    /// Waits for the failure that the data row is about, and checks what is said of it, which lists are read
    /// again, and that it was asked for once. Without an answer to go by all lists are read.
    void expectFailure(const QString& words, const QStringList& listsAfterAnAnswer)
    {
        QFETCH(QString, reason);
        QFETCH(bool, answered);
        if (reason == timedOut)
            giveUp();
        const QStringList lists = answered ? listsAfterAnAnswer : everything;
        QTRY_COMPARE(said.size(), 2 + lists.size());
        QCOMPARE(said.at(0), sound(SoundKind::Error));
        if (reason.endsWith(u'*'))
            QVERIFY2(said.at(1).startsWith(words + reason.chopped(1)), qPrintable(said.at(1)));
        else
            QCOMPARE(said.at(1), words + reason);
        QCOMPARE(said.mid(2), lists);
        QCOMPARE(asked(), 1);
    }
    /// What was sent to place an order, the last time.
    [[nodiscard]] QJsonObject placed() const { return server.last("POST", placePath).json(); }
};

/// Every way an answer can come that is no success, the words for it (the beginning of Qt's own where a star
/// ends them), and whether it is one to go by.
inline void addFailures()
{
    QTest::addColumn<StubAnswer>("answer");
    QTest::addColumn<QString>("reason");
    QTest::addColumn<bool>("answered");
    QTest::newRow("refused with a message")
        << StubAnswer::message(u"No %1 <b>"_s, 400) << u"No %1 <b>"_s << true;
    QTest::newRow("cut after it was sent") << StubAnswer::closed() << u"Connection closed"_s << false;
    QTest::newRow("no answer in time") << StubAnswer::held() << timedOut << false;
    QTest::newRow("cut within the answer")
        << StubAnswer::raw("HTTP/1.1 200 OK\r\nContent-Length: 90\r\n\r\n{") << u"Connection closed"_s
        << false;
    QTest::newRow("an error page") << StubAnswer::html("<h1>Bad</h1>", 502)
                                   << u"Error transferring http://127.0.0.1:*"_s << true;
    QTest::newRow("a redirect") << StubAnswer::redirect(u"http://127.0.0.1:1/"_s)
                                << u"The server answered with a redirect"_s << true;
}

} // namespace fixtures
