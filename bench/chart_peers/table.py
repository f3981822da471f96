"""The figures of all rounds as one table. Pure: texts and numbers in, text out."""

import math
import statistics

ROWS = [
    # title, figures of a cell, how each is written
    *((f"{title}, {width} px a bar", (f"{kind}_{width}_cpu", f"{kind}_{width}_wall"), ("{:.2f}", "{:.1f}"))
      for width in (7, 1)
      for kind, title in (("tick", "price frame"), ("pointer", "crosshair frame"), ("pan", "pan frame"))),
    ("price frame, 7 px, 100 000 loaded", ("tick_loaded_cpu", "tick_loaded_wall"), ("{:.2f}", "{:.1f}")),
    ("frame without a chart", ("frame_bare_cpu", "frame_bare_wall"), ("{:.2f}", "{:.1f}")),
    ("memory without a chart, MB", ("memory_bare",), ("{:.0f}",)),
    ("memory with 1 000 candles, MB", ("memory_1000",), ("{:.0f}",)),
    ("memory with 100 000 candles, MB", ("memory_100000",), ("{:.0f}",)),
    ("price to pixel, ms: median / 95 of a hundred", ("pixel_median", "pixel_late"), ("{:.1f}", "{:.1f}")),
    ("prices not seen / sent", ("pixel_missed", "pixel_sent"), ("{:.0f}", "{:.0f}")),
    ("bars in view at 7 px / at 1 px", ("bars_7", "bars_1"), ("{:.0f}", "{:.0f}")),
]


def percentile(values, share):
    """The least of the values that at least this share of them does not exceed."""
    ordered = sorted(values)
    return ordered[max(0, math.ceil(share * len(ordered)) - 1)]


def medians(found):
    """Of (program, figure, value) of all rounds the median of each figure of each program."""
    rounds = {}
    for program, figure, value in found:
        rounds.setdefault((program, figure), []).append(value)
    return {key: statistics.median(values) for key, values in rounds.items()}


def cell(values, program, figures, formats):
    """What is known of the figures of a program, or a dash for each that is not."""
    return " / ".join(form.format(values[program, figure]) if (program, figure) in values else "-"
                      for figure, form in zip(figures, formats))


def table(values, columns):
    """A table in Markdown; columns are (program, title)."""
    lines = [["", *(title for _, title in columns)]]
    lines += [[title, *(cell(values, program, figures, formats) for program, _ in columns)]
              for title, figures, formats in ROWS]
    widths = [max(len(line[number]) for line in lines) for number in range(len(columns) + 1)]

    def written(line):
        first, *others = (text.ljust(width) if number == 0 else text.rjust(width)
                          for number, (text, width) in enumerate(zip(line, widths)))
        return "| " + " | ".join((first, *others)) + " |"

    rule = "|" + "|".join("-" * (width + 2) if number == 0 else "-" * (width + 1) + ":"
                          for number, width in enumerate(widths)) + "|"
    return "\n".join([written(lines[0]), rule, *map(written, lines[1:])])
