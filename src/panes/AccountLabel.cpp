#include "panes/AccountLabel.h"

#include "app/base/ServerText.h"
#include "net/records/JsonNumber.h"

#include <QCoreApplication>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

struct Texts final {
    Q_DECLARE_TR_FUNCTIONS(AccountLabel)
};

QString challengeSuffix(int phase, int steps)
{
    if (steps < 2)
        return Texts::tr(" — Challenge");
    return Texts::tr(" — Challenge %1/%2")
        .arg(QString::number(std::min(phase, steps)), QString::number(steps));
}

} // namespace

QString accountLabel(const QJsonObject& account)
{
    if (jsonBool(account.value("isWallet"_L1), false))
        return Texts::tr("Real");
    if (account.value("type"_L1).toString() == "DEMO"_L1)
        return Texts::tr("Demo");
    const QJsonObject plan = account.value("Plan"_L1).toObject();
    QString name = shownSentence(plan.value("name"_L1).toString());
    if (name.isEmpty())
        name = Texts::tr("Account");
    if (jsonBool(account.value("isFunded"_L1), false))
        return name + Texts::tr(" — Funded");
    return name + challengeSuffix(jsonInt(account.value("phase"_L1), 1), jsonInt(plan.value("steps"_L1), 1));
}
