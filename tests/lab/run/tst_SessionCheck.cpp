#include "lab/core/session/SessionFile.h"
#include "lab/run/LatenessSearch.h"
#include "lab/run/LiveSession.h"
#include "support/TestMain.h"

#include <fstream>
#include <sstream>

using namespace Qt::StringLiterals;

namespace {

/// Decides by averages of closed bars, and by what it knows of its account.
const QString averages = uR"(
function OnTick() {
    var up = iMA(2, MODE_SMA, 1) > iMA(4, MODE_SMA, 1);
    if (up && Positions.count() === 0)
        Trade.buy(0.1, { slPoints: 3000, tpPoints: 3000 });
    else if (!up && Positions.count() > 0)
        Trade.closeAll();
}
)"_s;

lab::SessionVerdict follow(const std::filesystem::path& path, const std::string& account,
    const QString& script, std::optional<practice::TimeMs> from = {}, std::optional<practice::TimeMs> to = {},
    const std::set<lab::Delay>& late = {})
{
    lab::SessionFile file(path);
    lab::SessionCheck check(file.start(), {"EURUSD", practice::Timeframe::M1, account, from, to},
        {u"Lab"_s, u"Lab.js"_s, script}, late);
    while (const std::optional<lab::SessionEvent> event = file.next()) {
        if (!check.take(*event))
            break;
    }
    return check.finish(file.isWhole());
}

lab::SessionVerdict follow(const LiveSession& live, const QString& script,
    std::optional<practice::TimeMs> from = {}, std::optional<practice::TimeMs> to = {})
{
    return follow(live.path, live.accountId, script, from, to);
}

lab::SessionVerdict search(const LiveSession& live, const QString& script)
{
    return *lab::searchLateness([&](const std::set<lab::Delay>& late) {
        return std::optional(follow(live.path, live.accountId, script, {}, {}, late));
    });
}

std::vector<std::string> linesOf(const std::filesystem::path& path)
{
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

void write(const std::filesystem::path& path, const std::vector<std::string>& lines)
{
    std::ofstream file(path, std::ios::binary);
    for (const std::string& line : lines)
        file << line << '\n';
}

QString texts(const lab::SessionVerdict& verdict)
{
    if (!verdict.difference)
        return u"none"_s;
    return QString::fromStdString(verdict.difference->expected + " | " + verdict.difference->recorded);
}

} // namespace

/// A script on the practice platform, and once more in the lab on what was recorded.
class tst_SessionCheck final : public QObject {
    Q_OBJECT

    std::unique_ptr<LiveSession> m_whole; ///< that of the averages, with several orders

    /// The same with other lines.
    [[nodiscard]] lab::SessionVerdict followAltered(const std::vector<std::string>& lines) const
    {
        const std::filesystem::path path = m_whole->folder / "altered";
        write(path, lines);
        return follow(path, m_whole->accountId, averages);
    }

private Q_SLOTS:
    void initTestCase()
    {
        m_whole = std::make_unique<LiveSession>(averages);
        m_whole->play(1500);
        m_whole->end();
    }

    void aSessionIsFollowedToItsEnd()
    {
        const LiveSession& live = *m_whole;
        const lab::SessionVerdict verdict = follow(live, averages);
        QCOMPARE(texts(verdict), u"none"_s);
        QVERIFY(verdict.orders >= 3 && verdict.closings >= 2);
        QCOMPARE(verdict.orders + verdict.closings, std::uint64_t{live.done.size()});
        QVERIFY(verdict.trades >= verdict.orders + verdict.closings);
        QCOMPARE(verdict.refused, std::uint64_t{0});
        QVERIFY(verdict.calls > 1000);
        QCOMPARE(verdict.calls, verdict.prices);
        QVERIFY(verdict.moved.empty());
        QCOMPARE(verdict.longestDelay, practice::TimeMs{0});
    }

    void levelsThatAreReachedBetweenTwoLooksFillAsRecorded()
    {
        const QString tight = QString(averages).replace(u"3000"_s, u"40"_s);
        LiveSession live(tight);
        live.play(750);
        live.end();
        int closed = 0;
        for (const std::string& line : linesOf(live.path))
            closed += line.starts_with("trade\t") && line.find("\tCLOSED\t") != std::string::npos ? 1 : 0;
        QVERIFY(closed > 10);
        const lab::SessionVerdict verdict = follow(live, tight);
        QCOMPARE(texts(verdict), u"none"_s);
        QVERIFY(verdict.orders > 10);
    }

    void aFillThatTimeHasMovedIsNoDivergenceAndIsToldWithPriceAndTime()
    {
        LiveSession live(averages, 180);
        live.play(1500);
        live.end();
        const lab::SessionVerdict verdict = follow(live, averages);
        QCOMPARE(texts(verdict), u"none"_s);
        QCOMPARE(verdict.longestDelay, practice::TimeMs{180});
        QVERIFY(!verdict.moved.empty());
        for (const lab::MovedFill& fill : verdict.moved) {
            QCOMPARE(fill.after, practice::TimeMs{180});
            const bool isOrder = fill.order.starts_with("BUY 0.1 EURUSD");
            const double worse = (isOrder ? fill.filled - fill.decided : fill.decided - fill.filled) * 1e5;
            QCOMPARE(static_cast<double>(fill.worseBy), std::round(worse));
            QVERIFY(fill.worseBy != 0);
        }
    }

    void whatTheTerminalKnewLateTheScriptInTheLabKnowsAsLate()
    {
        LiveSession live(averages);
        live.readAfter = 3;
        live.play(750);
        live.end();
        const lab::SessionVerdict verdict = follow(live, averages);
        QCOMPARE(texts(verdict), u"none"_s);
        QVERIFY(verdict.orders > 3);  // it bought several times before it knew
        QVERIFY(verdict.refused > 0); // and closed what was closed
    }

    void aPriceThatTheTerminalSawInTheNextBarExplainsWhatTheScriptDid()
    {
        LiveSession live(averages);
        live.wait(950); // 50 ms before each minute ends
        live.late = 60;
        live.play(1500);
        live.end();
        QVERIFY(follow(live, averages).difference.has_value());
        const lab::SessionVerdict verdict = search(live, averages);
        QCOMPARE(texts(verdict), u"none"_s);
        QCOMPARE(verdict.orders + verdict.closings, std::uint64_t{live.done.size()});
        QVERIFY(!verdict.taken.empty());
        for (const lab::Delay& delay : verdict.taken) {
            QCOMPARE(delay.what, lab::Late::Price);
            QCOMPARE(delay.time % practice::minuteMs, practice::minuteMs - 50);
        }
    }

    void newsThatTheTerminalSawAfterAPriceExplainsWhatTheScriptDid()
    {
        LiveSession live(averages);
        live.newsLead = 30;
        live.play(1500);
        live.end();
        QVERIFY(follow(live, averages).difference.has_value());
        const lab::SessionVerdict verdict = search(live, averages);
        QCOMPARE(texts(verdict), u"none"_s);
        QVERIFY(verdict.orders > 3);
        QVERIFY(std::ranges::all_of(
            verdict.taken, [](const lab::Delay& delay) { return delay.what == lab::Late::News; }));
        QVERIFY(!verdict.taken.empty());
    }

    void whatNoLatenessExplainsStaysADifference()
    {
        LiveSession live(averages);
        live.wait(950);
        live.late = 60;
        live.newsLead = 30;
        live.play(1000);
        live.buyByHand();
        const practice::TimeMs time = live.now();
        live.play(500);
        live.end();
        const lab::SessionVerdict verdict = search(live, averages);
        QVERIFY2(texts(verdict).endsWith(u" | BUY 0.3 EURUSD"_s), qPrintable(texts(verdict)));
        QCOMPARE(verdict.difference->time, time);
        const QString twice = QString(averages).replace(u"0.1,"_s, u"0.2,"_s);
        QVERIFY(search(*m_whole, twice).difference.has_value());
        QVERIFY(search(*m_whole, twice).taken.empty());
    }

    void aSearchEndsWithoutAVerdictWhenItIsStopped()
    {
        int rounds = 0;
        QVERIFY(!lab::searchLateness([&](const std::set<lab::Delay>& late) {
            ++rounds;
            lab::SessionVerdict verdict;
            verdict.difference.emplace();
            verdict.possible.push_back({1000, lab::Late::Price});
            return late.empty() ? std::optional(verdict) : std::nullopt;
        }));
        QCOMPARE(rounds, 2);
    }

    void anOrderThatWasNeverSentIsFound()
    {
        LiveSession live(averages);
        while (live.done.empty())
            live.play(1);
        live.play(400);
        live.mayTrade = false;
        live.play(1500);
        live.end();
        const lab::SessionVerdict verdict = follow(live, averages);
        QVERIFY(verdict.difference.has_value());
        QCOMPARE(verdict.difference->recorded, std::string("nothing"));
    }

    void anOrderThatTheScriptDidNotAskForIsFound()
    {
        LiveSession live(u"function OnTick() {}"_s);
        live.play(100);
        live.buyByHand();
        const practice::TimeMs time = live.now();
        live.play(10);
        live.end();
        const lab::SessionVerdict verdict = follow(live, u"function OnTick() {}"_s);
        QCOMPARE(texts(verdict), u"nothing | BUY 0.3 EURUSD"_s);
        QCOMPARE(verdict.difference->time, time);
    }

    void anotherScriptIsFound()
    {
        const QString twice = QString(averages).replace(u"0.1,"_s, u"0.2,"_s);
        const lab::SessionVerdict verdict = follow(*m_whole, twice);
        QVERIFY2(texts(verdict).startsWith(u"BUY 0.2 EURUSD SL "_s), qPrintable(texts(verdict)));
        QVERIFY2(texts(verdict).contains(u" | BUY 0.1 EURUSD SL "_s), qPrintable(texts(verdict)));
    }

    void anAlteredPriceIsFound()
    {
        std::vector<std::string> lines = linesOf(m_whole->path);
        const auto place = std::find_if(
            lines.begin(), lines.end(), [](const std::string& line) { return line.starts_with("place\t"); });
        QVERIFY(place != lines.end());
        const auto price
            = std::find_if(std::make_reverse_iterator(place), lines.rend(), [](const std::string& line) {
                  return line.starts_with("quotes\t") && line.find("\t0 ") != std::string::npos;
              });
        QVERIFY(price != lines.rend());
        // One point at the end of the ask.
        std::size_t end = price->find('\t', price->find("\t0 ") + 1);
        end = end == std::string::npos ? price->size() : end;
        char& digit = (*price)[end - 1];
        digit = digit == '9' ? '8' : static_cast<char>(digit + 1);
        const lab::SessionVerdict verdict = followAltered(lines);
        QVERIFY2(verdict.difference.has_value(), "nothing was found");
    }

    void anAlteredFillIsFound()
    {
        std::vector<std::string> lines = linesOf(m_whole->path);
        const auto trade = std::find_if(
            lines.begin(), lines.end(), [](const std::string& line) { return line.starts_with("trade\t"); });
        QVERIFY(trade != lines.end());
        const std::size_t commission = trade->find("\t70\t");
        QVERIFY(commission != std::string::npos);
        trade->replace(commission, 4, "\t71\t");
        const lab::SessionVerdict verdict = followAltered(lines);
        QVERIFY2(texts(verdict).startsWith(u"the broker: OPEN MARKET BUY 0.1 EURUSD"_s),
            qPrintable(texts(verdict)));
        QVERIFY(texts(verdict).contains(u"commission 0.71"_s));
    }

    void beforeAndAfterItsTimeTheScriptIsNotOnTheChart()
    {
        LiveSession live(averages);
        live.mayTrade = false; // not allowed to trade yet
        live.play(1500);
        live.buyByHand();
        live.play(100);
        const practice::TimeMs from = live.now() + 1;
        live.mayTrade = true;
        live.play(750);
        const practice::TimeMs to = live.now() + 1;
        live.mayTrade = false;
        live.play(750);
        live.end();
        QCOMPARE(texts(follow(live, averages, from, to)), u"none"_s);
        QVERIFY(follow(live, averages, from).difference.has_value());
        QVERIFY(follow(live, averages, {}, to).difference.has_value());
    }

    void aRecordingThatBreaksOffIsFollowedAsFarAsItGoes()
    {
        std::vector<std::string> lines = linesOf(m_whole->path);
        const auto place = std::find_if(
            lines.begin(), lines.end(), [](const std::string& line) { return line.starts_with("place\t"); });
        QVERIFY(place != lines.end());
        lines.erase(place + 1, lines.end()); // the trade that it became is missing
        QCOMPARE(texts(followAltered(lines)), u"none"_s);
        lines.push_back("end\t9999999999999");
        QVERIFY(texts(followAltered(lines)).startsWith(u"the broker: OPEN"_s));
    }

    void anOrderJustBeforeTheEndCannotBeJudged()
    {
        LiveSession live(averages);
        while (live.done.empty())
            live.play(1);
        live.end();
        std::vector<std::string> lines = linesOf(live.path);
        const auto place = std::find_if(
            lines.begin(), lines.end(), [](const std::string& line) { return line.starts_with("place\t"); });
        lines.erase(place, lines.end());
        write(live.path, lines);
        const lab::SessionVerdict verdict = follow(live, averages);
        QCOMPARE(texts(verdict), u"none"_s);
        QCOMPARE(verdict.unanswered, std::uint64_t{1});
    }

    void aScriptThatFailsIsTold()
    {
        LiveSession live(averages);
        live.play(1000);
        live.end();
        const lab::SessionVerdict verdict = follow(live, u"function OnTick() { nobody(); }"_s);
        QVERIFY(verdict.scriptError.has_value());
        QVERIFY(QString::fromStdString(*verdict.scriptError).contains(u"nobody"_s));
    }

    void whatTheSessionLacksIsRefused()
    {
        LiveSession live(averages);
        live.end();
        const lab::SessionFile file(live.path);
        const ExpertScript script{u"Lab"_s, u"Lab.js"_s, averages};
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument,
            lab::SessionCheck(
                file.start(), {"NONE", practice::Timeframe::M1, live.accountId, {}, {}}, script));
        QVERIFY_THROWS_EXCEPTION(std::invalid_argument,
            lab::SessionCheck(file.start(), {"EURUSD", practice::Timeframe::M1, "nobody", {}, {}}, script));
    }
};

TAVORAN_TEST(tst_SessionCheck)
#include "tst_SessionCheck.moc"
