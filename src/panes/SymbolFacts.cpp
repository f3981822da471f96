#include "panes/SymbolFacts.h"

#include "app/base/NumberFormat.h"
#include "app/base/ServerText.h"
#include "net/records/SymbolRecord.h"

#include <QCoreApplication>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

struct FactTexts {
    Q_DECLARE_TR_FUNCTIONS(SymbolFacts)
};

} // namespace

QList<SymbolFact> symbolFacts(const QString& name, const QJsonObject& record)
{
    if (record.isEmpty())
        return {};
    return {
        {FactTexts::tr("Symbol"), shownName(name)},
        {FactTexts::tr("Description"), shownSentence(symbol::description(record))},
        {FactTexts::tr("Digits"), QString::number(symbol::digits(record))},
        {FactTexts::tr("Contract size"), formatGeneral(symbol::contractSize(record))},
        {FactTexts::tr("Commission (per lot)"), formatGeneral(symbol::commission(record))},
        {FactTexts::tr("Swap long"), formatGeneral(symbol::swapLong(record))},
        {FactTexts::tr("Swap short"), formatGeneral(symbol::swapShort(record))},
        {FactTexts::tr("Minimum volume"), u"0.01"_s},
    };
}
