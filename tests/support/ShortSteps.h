#pragma once

#include <QtTest>

// Qt 6.4 looks every 50 ms whether what QTRY_... waits for has come, and a test that talks to a server waits
// often.
#if QT_VERSION < QT_VERSION_CHECK(6, 5, 0)
#undef QTRY_IMPL
#define QTRY_IMPL(expr, timeout)                                                                             \
    const int qt_test_step = 5;                                                                              \
    const int qt_test_timeoutValue = timeout;                                                                \
    do {                                                                                                     \
        QTRY_LOOP_IMPL(expr, qt_test_timeoutValue, qt_test_step)                                             \
    } while (false);                                                                                         \
    QTRY_TIMEOUT_DEBUG_IMPL(expr, qt_test_timeoutValue, qt_test_step)
#endif
