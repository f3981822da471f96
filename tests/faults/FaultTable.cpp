#include "faults/FaultTable.h"

#include <QFile>
#include <QRegularExpression>

#include <chrono>

using namespace Qt::StringLiterals;

namespace faults {

namespace {

constexpr const char* variable = "TAVORAN_FAULT_TABLE";

} // namespace

bool FaultTable::isWanted()
{
    return qEnvironmentVariableIsSet(variable);
}

void FaultTable::add(const Row& row)
{
    if (!isWanted())
        return;
    QFile file(qEnvironmentVariable(variable));
    if (!file.open(QIODevice::Append))
        qFatal("Cannot write %s", qPrintable(file.fileName()));
    static const QRegularExpression port(uR"((https?://127\.0\.0\.1):\d+)"_s);
    const QString said = row.said.isEmpty() ? u"(no word)"_s : row.said.join(u"; "_s);
    const auto ms
        = [](std::chrono::nanoseconds time) { return QString::number(time / std::chrono::milliseconds(1)); };
    file.write(QStringList{QString::fromUtf8(row.request), QString::fromUtf8(nameOf(row.moment)),
                   QString::fromUtf8(nameOf(row.fault)), ms(row.times.gap), ms(row.times.hold),
                   ms(row.times.work), QString::number(row.tries), QString::number(row.misled),
                   QString(said).replace(port, u"\\1"_s).replace(u'\n', u' ')}
                   .join(u'\t')
                   .toUtf8()
        + '\n');
}

} // namespace faults
