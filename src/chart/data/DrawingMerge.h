#pragma once

#include "chart/data/Drawing.h"

/// What a chart shows after the server's drawings were read again: those of the server, then those on the
/// chart that it does not have.
/// - `stored`: as the server lists them.
/// - `shown`: on the chart now; those without an id have never come from the server.
/// - `confirmed`: created ones that the server had taken before it was asked for the list. A drawing of
/// `shown` without an id is kept, unless it was confirmed, or the server's list holds an equal one under an
/// id that was not on the chart: then its creation had arrived although it was reported as failed. The
/// selected drawing stays selected.
[[nodiscard]] QList<Drawing> mergeDrawings(
    QList<Drawing> stored, const QList<Drawing>& shown, QList<Drawing> confirmed);
