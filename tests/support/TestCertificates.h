#pragma once

#include <QSslConfiguration>

/// What a TLS server of the tests presents: a certificate for "localhost" and 127.0.0.1, valid until
/// 2120, signed by an authority made for the tests only and known to no other machine.
[[nodiscard]] QSslConfiguration testServerTls();

/// While it lives, connections made in this process trust the tests' authority beside the system's
/// own. Client code stays as it is: only Qt's default configuration changes.
class TrustedTestAuthority final {
    Q_DISABLE_COPY_MOVE(TrustedTestAuthority)

public:
    TrustedTestAuthority();
    ~TrustedTestAuthority();

private:
    const QSslConfiguration m_before;
};
