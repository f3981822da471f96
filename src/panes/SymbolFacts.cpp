#include "panes/SymbolFacts.h"

#include "app/base/NumberFormat.h"
#include "app/base/PriceRule.h"
#include "app/base/ServerText.h"
#include "net/records/JsonNumber.h"

#include <QCoreApplication>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

struct FactTexts {
    Q_DECLARE_TR_FUNCTIONS(SymbolFacts)
};

} // namespace

QList<SymbolFact> symbolFacts(const QString& symbol, const QJsonObject& record)
{
    if (record.isEmpty())
        return {};
    const auto general
        = [&record](QLatin1StringView key) { return formatGeneral(jsonNumber(record.value(key))); };
    return {
        {FactTexts::tr("Symbol"), shownName(symbol)},
        {FactTexts::tr("Description"), shownSentence(record.value("description"_L1).toString())},
        {FactTexts::tr("Digits"), QString::number(jsonInt(record.value("digits"_L1), usualPriceDigits))},
        {FactTexts::tr("Contract size"), general("contractSize"_L1)},
        {FactTexts::tr("Commission (per lot)"), general("commission"_L1)},
        {FactTexts::tr("Swap long"), general("swapLong"_L1)},
        {FactTexts::tr("Swap short"), general("swapShort"_L1)},
        {FactTexts::tr("Minimum volume"), u"0.01"_s},
    };
}
