#include "lab/core/study/SetResult.h"

#include "lab/core/figures/DailyReturns.h"
#include "lab/core/figures/FigureTable.h"
#include "lab/core/figures/StudyStatistics.h"
#include "lab/core/study/Bytes.h"

#include <algorithm>

namespace lab {

Figure SetResult::figure(std::string_view key) const
{
    const std::span<const FigureRow> rows = figureRows();
    const auto row = std::ranges::find(rows, key, &FigureRow::key);
    const auto place = static_cast<std::size_t>(row - rows.begin());
    return place < figures.size() ? figures[place] : Figure();
}

SetResult setResultOf(std::uint64_t number, const RunResult& result)
{
    if (result.error)
        throw StudyError(*result.error);
    SetResult kept;
    kept.number = number;
    const Figures figures = figuresOf(result);
    for (const FigureRow& row : figureRows())
        kept.figures.push_back(row.of(figures));
    const DailyReturns returns = dailyReturns(result);
    kept.daySharpe = dailySharpe(returns.values);
    for (std::size_t i = 0; i < returns.values.size(); ++i)
        kept.days.push_back({result.days[i].day, returns.values[i]});
    kept.tickPrint = result.tickPrint;
    kept.decisionPrint = result.decisionPrint;
    return kept;
}

std::string bytesOf(const std::vector<DayGain>& days)
{
    ByteWriter bytes;
    for (const DayGain& day : days) {
        bytes.number(static_cast<std::uint32_t>(day.day), 4);
        bytes.real(day.gain);
    }
    return bytes.take();
}

std::vector<DayGain> daysFrom(std::string_view bytes)
{
    std::vector<DayGain> days;
    ByteReader reader(bytes);
    while (!reader.isAtEnd()) {
        const auto day = static_cast<std::int32_t>(static_cast<std::uint32_t>(reader.number(4)));
        days.push_back({day, reader.real()});
    }
    return days;
}

std::string bytesOf(const SetResult& result)
{
    ByteWriter bytes;
    bytes.number(result.number);
    bytes.number(result.failure ? 1 : 0, 1);
    bytes.text(result.failure.value_or(""));
    bytes.number(result.figures.size());
    for (const Figure& figure : result.figures)
        bytes.figure(figure);
    bytes.figure(result.daySharpe);
    bytes.number(result.tickPrint);
    bytes.number(result.decisionPrint);
    bytes.text(bytesOf(result.days));
    return bytes.take();
}

SetResult setResultFrom(std::string_view bytes)
{
    ByteReader reader(bytes);
    SetResult result;
    result.number = reader.number();
    const bool isFailed = reader.number(1) != 0;
    std::string failure = reader.text();
    if (isFailed)
        result.failure = std::move(failure);
    for (std::uint64_t left = reader.number(); left > 0; --left)
        result.figures.push_back(reader.figure());
    result.daySharpe = reader.figure();
    result.tickPrint = reader.number();
    result.decisionPrint = reader.number();
    result.days = daysFrom(reader.text());
    if (!reader.isAtEnd())
        throw StudyError("a result is longer than it should be");
    return result;
}

} // namespace lab
