// Accounts and trades: the lists that the server answers with, and the bodies made of them.

#include "fuzz/FuzzQt.h"

#include "net/records/AccountRecord.h"
#include "net/records/LevelsBody.h"
#include "net/records/TradeRecord.h"

using fuzz::demand;

namespace fuzz_records {

namespace {

void readAccount(const QJsonObject& record)
{
    demand(fuzz::isAmount(account::balance(record)), "a balance is an amount");
    const QString label = account::label(record);
    demand(!label.isEmpty() && fuzz::isOneLine(label) && label.size() < 400, "a label is one short line");
    demand(!account::isTradable(record) || account::status(record) == QStringLiteral("ACTIVE"),
        "only active accounts trade");
    static_cast<void>(account::id(record));
}

void demandSame(const QJsonObject& body)
{
    demand(QJsonDocument::fromJson(fuzz::jsonOf(body)).object() == body, "a body arrives as it was made");
}

void readTrade(const QJsonObject& record)
{
    for (const double number : {trade::lots(record), trade::entryPrice(record), trade::exitPrice(record),
             trade::pendingPrice(record), trade::profit(record), trade::margin(record), trade::swap(record),
             trade::commission(record)})
        demand(fuzz::isAmount(number), "a trade's numbers are amounts");
    const std::optional<double> stopLoss = trade::stopLoss(record);
    const std::optional<double> takeProfit = trade::takeProfit(record);
    demand(stopLoss != 0.0 && takeProfit != 0.0, "a level that is told is none at 0");
    for (const LevelKind kind :
        {LevelKind::Entry, LevelKind::StopLoss, LevelKind::TakeProfit, LevelKind::Price}) {
        demand(levelKind(levelText(kind)) == kind, "a level's name names it");
        const QJsonObject body = movedLevelBody(record, kind, 1.25);
        demandSame(body);
        demand(!body.isEmpty() && body.size() <= 3, "a body has the levels of a trade");
        for (const QJsonValue value : body)
            demand(fuzz::isAmount(value.toDouble(1e300)), "a level is an amount");
    }
    demandSame(typedLevelsBody({stopLoss, takeProfit, trade::pendingPrice(record)}));
    demand((trade::side(record) == Side::Buy) == (trade::typeText(record) == QStringLiteral("BUY")),
        "only a BUY buys");
    for (const QString& text : {trade::id(record), trade::accountId(record), trade::symbol(record),
             trade::orderKind(record), trade::createdAt(record), trade::closedAt(record)})
        static_cast<void>(text.size());
}

int attempt(const std::uint8_t* data, std::size_t size)
{
    const QJsonArray rows = QJsonDocument::fromJson(fuzz::bytesOf(fuzz::textOf(data, size))).array();
    for (const QJsonValue row : rows) {
        readAccount(row.toObject());
        readTrade(row.toObject());
    }
    return 0;
}

const fuzz::Target target("records", &attempt);

} // namespace

} // namespace fuzz_records
