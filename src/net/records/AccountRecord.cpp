#include "net/records/AccountRecord.h"

#include "app/base/ServerText.h"
#include "net/records/JsonNumber.h"

#include <QCoreApplication>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Texts final {
    Q_DECLARE_TR_FUNCTIONS(AccountLabel)
};

bool isWallet(const QJsonObject& record)
{
    return jsonBool(record.value("isWallet"_L1), false);
}

QString challengeSuffix(int phase, int steps)
{
    if (steps < 2)
        return Texts::tr(" — Challenge");
    //: %1 the phase of the challenge, %2 how many there are
    return Texts::tr(" — Challenge %1/%2")
        .arg(QString::number(std::min(phase, steps)), QString::number(steps));
}

} // namespace

QString account::id(const QJsonObject& record)
{
    return record.value("id"_L1).toString();
}

double account::balance(const QJsonObject& record)
{
    return jsonNumber(record.value("balance"_L1));
}

QString account::status(const QJsonObject& record)
{
    return record.value("status"_L1).toString();
}

bool account::isTradable(const QJsonObject& record)
{
    return !isWallet(record) && status(record) == "ACTIVE"_L1;
}

QString account::label(const QJsonObject& record)
{
    if (isWallet(record))
        //: an account with real money
        return Texts::tr("Real");
    if (record.value("type"_L1).toString() == "DEMO"_L1)
        return Texts::tr("Demo");
    const QJsonObject plan = record.value("Plan"_L1).toObject();
    QString name = shownSentence(plan.value("name"_L1).toString());
    if (name.isEmpty())
        name = Texts::tr("Account");
    if (jsonBool(record.value("isFunded"_L1), false))
        return name + Texts::tr(" — Funded");
    return name + challengeSuffix(jsonInt(record.value("phase"_L1), 1), jsonInt(plan.value("steps"_L1), 1));
}
