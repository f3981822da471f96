#include "soak/ProcessFigures.h"

#include <QDir>
#include <QFile>

#include <malloc.h>

using namespace Qt::StringLiterals;

namespace {

/// The number behind the name of a line, such as "Pss:    1234 kB".
qint64 numberOf(const QString& path, const QByteArray& name)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith(name + ':'))
            return line.simplified().split(' ').value(1).toLongLong();
    }
    return 0;
}

} // namespace

ProcessFigures ProcessFigures::of(qint64 processId)
{
    const QString folder = u"/proc/%1/"_s.arg(processId);
    ProcessFigures figures;
    figures.rssKb = numberOf(folder + u"smaps_rollup"_s, "Rss");
    figures.pssKb = numberOf(folder + u"smaps_rollup"_s, "Pss");
    figures.threads = static_cast<int>(numberOf(folder + u"status"_s, "Threads"));
    const QFileInfoList descriptors
        = QDir(folder + u"fd"_s).entryInfoList(QDir::Files | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo& descriptor : descriptors)
        ++(descriptor.symLinkTarget().contains("socket:"_L1) ? figures.sockets : figures.files);
    return figures;
}

qint64 heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return static_cast<qint64>(info.uordblks + info.hblkhd);
}
