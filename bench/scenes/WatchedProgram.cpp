#include "scenes/WatchedProgram.h"

#include "pixel/Monotonic.h"
#include "scenes/Waiting.h"

#include <QFile>

using namespace Qt::StringLiterals;

WatchedProgram::WatchedProgram(const QString& path)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"QT_PLUGIN_PATH"_s, QStringLiteral(PROBE_PLUGINS));
    environment.insert(u"QT_QPA_GENERIC_PLUGINS"_s, u"tavoran-probe"_s);
    m_program.setProcessEnvironment(environment);
    m_program.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    startedAt = monotonicNs();
    m_program.start(path, {});
}

WatchedProgram::~WatchedProgram()
{
    m_program.kill();
    m_program.waitForFinished();
}

void WatchedProgram::tell(const QByteArray& errand)
{
    m_program.write(errand + '\n');
}

QByteArray WatchedProgram::nextLine(const QByteArray& start)
{
    QByteArray found;
    waitUntil(
        [&] {
            const bool ended = m_program.state() == QProcess::NotRunning;
            while (found.isEmpty() && m_program.canReadLine()) {
                const QByteArray line = m_program.readLine().trimmed();
                if (line.startsWith(start + ' '))
                    found = line;
            }
            if (ended && found.isEmpty())
                giveUp(u"the program ended by itself"_s);
            return !found.isEmpty();
        },
        QString::fromLatin1(start));
    return found;
}

qint64 WatchedProgram::next(const QByteArray& start)
{
    const QByteArray line = nextLine(start);
    return line.mid(line.lastIndexOf(' ') + 1).toLongLong();
}

double WatchedProgram::memory(const QByteArray& field) const
{
    QFile file(u"/proc/%1/smaps_rollup"_s.arg(m_program.processId()));
    if (!file.open(QIODevice::ReadOnly))
        giveUp(u"the kernel tells nothing about the program's memory"_s);
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith(field + ':'))
            return line.simplified().split(' ').value(1).toDouble() * 1024.0;
    }
    return 0.0;
}
