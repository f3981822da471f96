#include "app/base/SettingsValues.h"

#include <QCryptographicHash>
#include <QSettings>
#include <QVariant>

namespace {

// No text in UTF-8 holds these two.
constexpr char bytesFollow = '\xff';
constexpr char listFollows = '\xfe';

QByteArray withLength(const QByteArray& bytes)
{
    return QByteArray::number(bytes.size()) + ' ' + bytes;
}

} // namespace

QByteArray comparable(const QVariant& value)
{
    switch (value.typeId()) {
    case QMetaType::QByteArray:
        return bytesFollow + value.toByteArray();
    case QMetaType::QStringList:
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        // Qt writes these as no value and as the value alone.
        if (list.size() <= 1)
            return list.isEmpty() ? QByteArray() : comparable(list.constFirst());
        QByteArray all(1, listFollows);
        for (const QVariant& each : list)
            all += withLength(comparable(each));
        return all;
    }
    default:
        return value.toString().toUtf8();
    }
}

SettingsValues settingsValues(const QSettings& settings)
{
    SettingsValues values;
    const QStringList keys = settings.allKeys();
    for (const QString& key : keys)
        values.insert(key, comparable(settings.value(key)));
    return values;
}

QByteArray digestOf(const SettingsValues& values)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        hash.addData(withLength(value.key().toUtf8()) + withLength(value.value()));
    return hash.result().toHex();
}
