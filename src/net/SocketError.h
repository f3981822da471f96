#pragma once

#include <QWebSocket>

/// The error signal of a web socket, whose name differs between versions of Qt.
#if QT_VERSION >= QT_VERSION_CHECK(6, 5, 0)
inline constexpr auto socketError = &QWebSocket::errorOccurred;
#else
inline constexpr auto socketError = qOverload<QAbstractSocket::SocketError>(&QWebSocket::error);
#endif
