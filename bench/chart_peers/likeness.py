"""Whether all programs show the same, without which their figures mean little. Pure: numbers in, text out."""

import math

SAME_VALUES, SAME_BARS = 1e-6, 0.05  # relative; price axes differ in width


def findings(shown, values, columns, widths):
    """(text, whether it is alike) of all that at least two programs tell: of shown, lists of averages and strength by
    when they were shown, and of the bars in view."""
    found = [finding(f"Averages and RSI of the newest candle {when}", disagreement(lists), SAME_VALUES)
             for when, lists in shown.items()]
    for width in widths:
        bars = [[values[program, f"bars_{width}"]] for program, _ in columns if (program, f"bars_{width}") in values]
        found.append(finding(f"Bars in view at {width} px", disagreement(bars), SAME_BARS))
    return [one for one in found if one]


def finding(what, differ, most):
    if differ is None:
        return None
    alike = differ <= most
    return f"{what} differ by {differ:.1e} at most{'' if alike else f': more than {most:g}'}.", alike


def disagreement(shown):
    """The largest relative difference between programs that should show the same values; None without two.
    What is no number differs from everything."""
    known = [values for values in shown if values]
    if len(known) < 2:
        return None
    return max((difference(one, other)
                for values in known[1:] for one, other in zip(known[0], values, strict=True)), default=0.0)


def difference(one, other):
    if one is None or other is None or not (math.isfinite(one) and math.isfinite(other)):
        return math.inf
    return abs(one - other) / max(abs(one), abs(other), 1e-300)
