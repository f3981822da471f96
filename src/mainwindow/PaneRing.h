#pragma once

#include <QList>

/// Which of the panes of a window comes after `current`, once around in either direction; `onShow` tells for
/// each whether the keyboard can go there. From outside all panes (`current` -1) the first one comes next.
/// `current` itself when there is no other, -1 when none is on show.
[[nodiscard]] qsizetype nextPane(const QList<bool>& onShow, qsizetype current, bool forward);
