#pragma once

#include "chart/series/HistoryReply.h"

#include <QByteArrayView>

#include <optional>

/// Reads a history straight from its text, at a tenth of what Qt's parser costs, when it has the plain form
/// that servers send: an array of flat objects of numbers and texts without escapes. Nothing for any other
/// text, which is left to the general parser.
[[nodiscard]] std::optional<HistoryReply> readPlainHistory(QByteArrayView json, const CandleRule& rule);
