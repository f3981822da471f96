#pragma once

#include <QtGlobal>

/// What the kernel and the allocator tell of a process.
struct ProcessFigures {
    qint64 rssKb = 0;
    qint64 pssKb = 0;
    int files = 0; ///< descriptors that are no sockets
    int sockets = 0;
    int threads = 0;

    /// Zeros for a process that has ended.
    [[nodiscard]] static ProcessFigures of(qint64 processId);
};

/// What this process has allocated and not freed, in bytes, whatever the allocator keeps beside it.
[[nodiscard]] qint64 heapInUse();
