#include "pixel/XvfbServer.h"

#include "scenes/Waiting.h"

using namespace Qt::StringLiterals;

XvfbServer::XvfbServer(const QSize& size)
    : m_folder(u"/dev/shm/tavoran-pixel-XXXXXX"_s)
{
    m_server.setProcessChannelMode(QProcess::SeparateChannels);
    m_server.setStandardErrorFile(QProcess::nullDevice());
    m_server.start(u"Xvfb"_s,
        {u"-displayfd"_s, u"1"_s, u"-fbdir"_s, m_folder.path(), u"-screen"_s, u"0"_s,
            u"%1x%2x24"_s.arg(size.width()).arg(size.height()), u"-nolisten"_s, u"tcp"_s, u"-noreset"_s});
    waitUntil(
        [this] {
            if (m_server.state() == QProcess::NotRunning)
                giveUp(u"Xvfb does not run; the package is called xvfb"_s);
            return m_server.canReadLine();
        },
        u"the X server"_s);
    m_display = u':' + QString::fromLatin1(m_server.readLine().trimmed());
}

XvfbServer::~XvfbServer()
{
    m_server.terminate();
    m_server.waitForFinished();
}

QString XvfbServer::screenFile() const
{
    return m_folder.filePath(u"Xvfb_screen0"_s);
}
