#include "app/base/SettingsValues.h"

#include <QCryptographicHash>
#include <QSettings>

SettingsValues settingsValues(const QSettings& settings)
{
    SettingsValues values;
    const QStringList keys = settings.allKeys();
    for (const QString& key : keys)
        values.insert(key, settings.value(key).toString());
    return values;
}

QByteArray digestOf(const SettingsValues& values)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (auto value = values.cbegin(); value != values.cend(); ++value) {
        for (const QString& text : {value.key(), value.value()}) {
            const QByteArray bytes = text.toUtf8();
            hash.addData(QByteArray::number(bytes.size()) + ' ' + bytes);
        }
    }
    return hash.result().toHex();
}
