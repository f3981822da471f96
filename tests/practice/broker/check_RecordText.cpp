#include "BrokerFixture.h"

#include "practice/core/broker/DefaultAccounts.h"
#include "practice/core/broker/RecordText.h"

#include <set>

using namespace practice;

TEST_CASE("every value has a word of its own and the word leads back to it")
{
    for (const auto kind : {AccountKind::Wallet, AccountKind::Demo, AccountKind::Plan})
        CHECK(accountKindFromText(toText(kind)) == kind);
    for (const auto status : {AccountStatus::Active, AccountStatus::Failed, AccountStatus::Passed})
        CHECK(accountStatusFromText(toText(status)) == status);
    for (const auto side : {Side::Buy, Side::Sell})
        CHECK(sideFromText(toText(side)) == side);
    for (const auto kind : {OrderKind::Market, OrderKind::BuyLimit, OrderKind::SellLimit, OrderKind::BuyStop,
             OrderKind::SellStop, OrderKind::Balance})
        CHECK(orderKindFromText(toText(kind)) == kind);
    for (const auto status :
        {TradeStatus::Pending, TradeStatus::Open, TradeStatus::Closed, TradeStatus::Cancelled})
        CHECK(tradeStatusFromText(toText(status)) == status);
    for (const auto reason : {CloseReason::None, CloseReason::Manual, CloseReason::StopLoss,
             CloseReason::TakeProfit, CloseReason::StopOut, CloseReason::Risk, CloseReason::NoMargin,
             CloseReason::Phase, CloseReason::Reset})
        CHECK(closeReasonFromText(toText(reason)) == reason);
}

TEST_CASE("the words that clients compare are exact")
{
    CHECK_EQ(toText(TradeStatus::Pending), "PENDING");
    CHECK_EQ(toText(AccountStatus::Active), "ACTIVE");
    CHECK_EQ(toText(AccountStatus::Failed), "FAILED");
    CHECK_EQ(toText(AccountStatus::Passed), "PASSED");
    CHECK_EQ(toText(OrderKind::SellStop), "SELL_STOP");
    CHECK_EQ(toText(CloseReason::StopLoss), "SL");
    CHECK_EQ(toText(CloseReason::TakeProfit), "TP");
    CHECK_EQ(toText(CloseReason::None), "");
    CHECK(!sideFromText("buy"));
    CHECK(!orderKindFromText(""));
    CHECK(!accountStatusFromText("ACTIVE "));
}

TEST_CASE("ids are version 4 UUIDs, differ, and repeat only with the seed")
{
    UuidSource first(1);
    UuidSource again(1);
    UuidSource other(2);
    std::set<std::string> seen;
    for (int i = 0; i < 1000; ++i) {
        const std::string id = first();
        CHECK_EQ(id, again());
        CHECK(seen.insert(id).second);
        CHECK(seen.insert(other()).second);
        CHECK_EQ(id.size(), std::size_t{36});
        CHECK_EQ(id[14], '4');
        CHECK(std::string("89ab").find(id[19]) != std::string::npos);
        CHECK(id[8] == '-' && id[13] == '-' && id[18] == '-' && id[23] == '-');
        CHECK_EQ(id.find_first_not_of("0123456789abcdef-"), std::string::npos);
    }
}

TEST_CASE("a fresh platform has a wallet, a demo, a funded account and a two-step challenge")
{
    const std::vector<Account> accounts = defaultAccounts(UuidSource(3), fixtureTime);
    REQUIRE(accounts.size() == 4);
    CHECK(accounts[0].kind == AccountKind::Wallet);
    CHECK(accounts[1].kind == AccountKind::Demo);
    CHECK_EQ(accounts[1].balance, 10'000'000);
    CHECK(accounts[2].kind == AccountKind::Plan && accounts[2].isFunded);
    CHECK(accounts[3].kind == AccountKind::Plan && !accounts[3].isFunded);
    CHECK_EQ(accounts[3].plan.steps, 2);
    CHECK_EQ(accounts[3].phase, 1);
    std::set<std::string> ids;
    for (const Account& account : accounts) {
        CHECK(ids.insert(account.id).second);
        CHECK(account.status == AccountStatus::Active);
        CHECK_EQ(account.initialBalance, account.balance);
        CHECK_EQ(account.dayStartEquity, account.balance);
        CHECK_EQ(account.dayIndex, fixtureDay);
        CHECK(account.kind != AccountKind::Plan || !account.plan.name.empty());
    }
}

CHECK_MAIN()
