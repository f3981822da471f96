#include "app/base/Log.h"

#include "app/base/PrivateFile.h"
#include "app/base/ServerText.h"

#include <QDir>
#include <QTime>

using namespace Qt::StringLiterals;

namespace {

void logQtMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    // Writing the log may itself make Qt complain.
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
    file.write(u"%1  %2\n"_s.arg(time, shownEntry(message)).toUtf8());
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
    qInstallMessageHandler(logQtMessage);
}
