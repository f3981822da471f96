#pragma once

#include "chart/series/Candle.h"

#include <QtGlobal>

#include <vector>

/// Candles that a chart has had and keeps no longer: those before the first one of its list.
class OlderCandles {
    Q_DISABLE_COPY_MOVE(OlderCandles)

public:
    OlderCandles() = default;
    virtual ~OlderCandles() = default;

    [[nodiscard]] std::size_t count() const { return m_count; }
    /// The oldest has the number 0; `number` is below count().
    [[nodiscard]] virtual const Candle& at(std::size_t number) = 0;

protected:
    void setCount(std::size_t count) { m_count = count; }

private:
    std::size_t m_count = 0;
};

/// All candles of a chart as a script finds them, oldest first: those of its list, and whatever came before.
class ExpertCandles final {
public:
    /// Both must outlive this object, and the list stays as it is meanwhile.
    ExpertCandles(const std::vector<Candle>& list, OlderCandles* older = nullptr)
        : m_list(list.data())
        , m_older(older)
        , m_start(older ? older->count() : 0)
        , m_size(m_start + list.size())
    {
    }

    [[nodiscard]] std::size_t size() const { return m_size; }
    /// A price of the candle with this index, which is below size().
    [[nodiscard]] double price(std::size_t index, double Candle::*field) const
    {
        return (index < m_start ? m_older->at(index) : m_list[index - m_start]).*field;
    }

private:
    const Candle* m_list;
    OlderCandles* m_older;
    std::size_t m_start; ///< of the list
    std::size_t m_size;
};
