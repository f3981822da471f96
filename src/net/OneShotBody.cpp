#include "net/OneShotBody.h"

#include <algorithm>

OneShotBody::OneShotBody(QByteArray data, QObject* parent)
    : QIODevice(parent)
    , m_data(std::move(data))
{
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

qint64 OneShotBody::bytesAvailable() const
{
    return m_data.size() - m_position + QIODevice::bytesAvailable();
}

qint64 OneShotBody::readData(char* target, qint64 maxSize)
{
    if (atEnd())
        return -1;
    const qint64 count = std::min(maxSize, m_data.size() - m_position);
    std::copy_n(m_data.constData() + m_position, count, target);
    m_position += count;
    return count;
}

qint64 OneShotBody::writeData(const char* /*source*/, qint64 /*maxSize*/)
{
    return -1;
}
