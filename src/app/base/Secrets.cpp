#include "app/base/Secrets.h"

#include "app/base/ServerText.h"

#include <QMutex>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype shortestSecret = 6;

struct Secrets {
    QMutex mutex;
    QStringList texts;
    qsizetype shortest = 0;
    qsizetype longest = 0;
};

Secrets& secrets()
{
    // Never destroyed: Qt may still speak while the process winds down.
    static Secrets& instance = *new Secrets;
    return instance;
}

} // namespace

void keepSecret(const QString& secret)
{
    if (secret.size() < shortestSecret)
        return;
    Secrets& known = secrets();
    const QMutexLocker lock(&known.mutex);
    const QStringList forms = {secret, oneLine(secret), QString::fromLatin1(QUrl::toPercentEncoding(secret))};
    for (const QString& form : forms) {
        if (known.texts.contains(form))
            continue;
        known.shortest = known.texts.isEmpty() ? form.size() : std::min(known.shortest, form.size());
        known.longest = std::max(known.longest, form.size());
        known.texts.append(form);
    }
}

QString maskSecrets(const QString& text)
{
    QString result = text;
    Secrets& known = secrets();
    const QMutexLocker lock(&known.mutex);
    if (text.size() < known.shortest)
        return result;
    for (const QString& secret : std::as_const(known.texts))
        result.replace(secret, u"[hidden]"_s, Qt::CaseInsensitive);
    return result;
}

qsizetype longestSecret()
{
    Secrets& known = secrets();
    const QMutexLocker lock(&known.mutex);
    return known.longest;
}
