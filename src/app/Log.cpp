#include "app/Log.h"

#include "app/PrivateFile.h"
#include "app/ServerText.h"

#include <QDir>
#include <QMutex>
#include <QTime>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype shortestSecret = 6;

struct Secrets {
    QMutex mutex;
    QStringList texts;
};

Secrets& secrets()
{
    // Never destroyed: the toolkit may still speak while the process winds down.
    static Secrets& instance = *new Secrets;
    return instance;
}

void logToolkitMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    // Writing the log may itself make the toolkit complain.
    thread_local bool busy = false;
    if (busy)
        return;
    busy = true;
    appLog(u"[qt:%1] %2"_s.arg(QString::number(static_cast<int>(type)), message));
    busy = false;
}

} // namespace

void appLog(const QString& message)
{
    QFile file;
    if (!openPrivateFile(file, logFilePath(),
            QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text | QIODevice::Unbuffered))
        return;
    const QString time = QTime::currentTime().toString(u"HH:mm:ss.zzz"_s);
    // One write an entry: a second terminal appends to the same file.
    file.write(u"%1  %2\n"_s.arg(time, maskSecrets(oneLine(message))).toUtf8());
}

void logReport(const QString& source, const QString& message)
{
    appLog(u"[%1] %2"_s.arg(source, message));
}

QString logFilePath()
{
    return QDir::tempPath() + "/tavoran-terminal.log"_L1;
}

void installMessageHandler()
{
    qInstallMessageHandler(logToolkitMessage);
}

void hideFromLog(const QString& secret)
{
    if (secret.size() < shortestSecret)
        return;
    Secrets& known = secrets();
    const QMutexLocker lock(&known.mutex);
    const QStringList forms = {secret, oneLine(secret), QString::fromLatin1(QUrl::toPercentEncoding(secret))};
    for (const QString& form : forms) {
        if (!known.texts.contains(form))
            known.texts.append(form);
    }
}

QString maskSecrets(const QString& text)
{
    QString result = text;
    Secrets& known = secrets();
    const QMutexLocker lock(&known.mutex);
    for (const QString& secret : std::as_const(known.texts))
        result.replace(secret, u"[hidden]"_s, Qt::CaseInsensitive);
    return result;
}
