#include "lab/run/Journal.h"

namespace lab {

namespace {

std::string oneLine(const QString& text)
{
    std::string line = text.toStdString();
    for (char& c : line) {
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
            c = ' ';
    }
    return line;
}

} // namespace

void Journal::add(practice::TimeMs time, const QString& text)
{
    ++m_count;
    JournalLine line{time, oneLine(text)};
    const std::size_t bytes = line.text.size();
    if (m_last.empty() && m_first.size() < mostLines && m_firstBytes + bytes <= mostBytes) {
        m_firstBytes += bytes;
        m_first.push_back(std::move(line));
        return;
    }
    m_lastBytes += bytes;
    m_last.push_back(std::move(line));
    while (m_last.size() > mostLines || m_lastBytes > mostBytes) {
        m_lastBytes -= m_last.front().text.size();
        m_leftOutUntil = m_last.front().time;
        m_last.pop_front();
        ++m_leftOut;
    }
}

std::vector<JournalLine> Journal::lines() const
{
    std::vector<JournalLine> all = m_first;
    if (m_leftOut > 0)
        all.push_back({m_leftOutUntil, std::to_string(m_leftOut) + " lines left out"});
    all.insert(all.end(), m_last.begin(), m_last.end());
    return all;
}

} // namespace lab
