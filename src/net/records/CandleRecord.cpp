#include "net/records/CandleRecord.h"

#include "net/records/JsonNumber.h"

QString candle::time(const QJsonObject& record)
{
    return record.value(timeField).toString();
}

double candle::open(const QJsonObject& record)
{
    return jsonNumber(record.value(openField));
}

double candle::high(const QJsonObject& record)
{
    return jsonNumber(record.value(highField));
}

double candle::low(const QJsonObject& record)
{
    return jsonNumber(record.value(lowField));
}

double candle::close(const QJsonObject& record)
{
    return jsonNumber(record.value(closeField));
}

double candle::volume(const QJsonObject& record)
{
    return jsonNumber(record.value(volumeField));
}
