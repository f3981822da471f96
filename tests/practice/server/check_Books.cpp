#include "practice/Check.h"
#include "practice/server/BookSession.h"

#include "practice/core/broker/RecordText.h"

#include <iostream>

using namespace practice;

TEST_CASE("a second set of books agrees to the cent with random sessions, stalls, restarts and jumping "
          "clocks included")
{
    BookSession::Seen all;
    for (unsigned seed = 1; seed <= 8; ++seed) {
        BookSession session(seed);
        session.run(1'600);
        all += session.seen();
    }
    for (const auto& [reason, count] : all.ends)
        std::cout << "  ended " << toText(reason) << ": " << count << '\n';
    std::cout << "  accepted " << all.accepted << ", refused " << all.refused << ", restarts " << all.restarts
              << ", clocks set " << all.clocksSet << ", stalls " << all.stalls << ", phases " << all.phases
              << ", debts " << all.debts << ", nights " << all.nights << ", lines of history compared "
              << all.lines << '\n';
    CHECK(all.accepted > 2'000);
    CHECK(all.refused > 200);
    CHECK(all.restarts > 30);
    CHECK(all.clocksSet > 30);
    CHECK(all.stalls > 100);
    CHECK(all.nights > 500);
    for (const CloseReason reason : {CloseReason::Manual, CloseReason::StopLoss, CloseReason::TakeProfit,
             CloseReason::StopOut, CloseReason::Risk, CloseReason::NoMargin, CloseReason::Reset})
        CHECK(all.ends[reason] > 0);
    CHECK(all.ends[CloseReason::StopOut] > 10);
    CHECK(all.phases > 0);
    CHECK(all.debts > 0);
}

CHECK_MAIN()
