#include "app/ui/PoliteNews.h"

#include "app/ui/ScreenReader.h"

#include <utility>

PoliteNews::PoliteNews(std::function<bool()> tell)
    : m_tell(std::move(tell))
{
    m_pause.setSingleShot(true);
    QObject::connect(&m_pause, &QTimer::timeout, &m_pause, [this] { this->tell(); });
}

void PoliteNews::note()
{
    if (m_waiting || !isReaderThere())
        return;
    m_waiting = true;
    if (!m_pause.isActive())
        m_pause.start(0); // what one turn of the event loop changes is told together
}

void PoliteNews::tell()
{
    if (!m_waiting)
        return;
    m_waiting = false;
    if (isReaderThere() && m_tell())
        m_pause.start(pauseMs);
}
