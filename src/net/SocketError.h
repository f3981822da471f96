#pragma once

#include <QWebSocket>

/// The signal by which a web socket tells of an error, by the name that it has in this version of
/// Qt.
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
inline constexpr auto socketError = &QWebSocket::errorOccurred;
#else
inline constexpr auto socketError = qOverload<QAbstractSocket::SocketError>(&QWebSocket::error);
#endif
