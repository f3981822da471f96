#include "support/TestCertificates.h"

#include <QFile>
#include <QSslCertificate>
#include <QSslKey>

namespace {

QByteArray contentOf(const char* name)
{
    QFile file(QStringLiteral(TLS_FOLDER "/") + QString::fromLatin1(name));
    if (!file.open(QIODevice::ReadOnly))
        qFatal("Cannot read %s", qPrintable(file.fileName()));
    return file.readAll();
}

} // namespace

QSslConfiguration testServerTls()
{
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setLocalCertificate(QSslCertificate(contentOf("localhost.pem")));
    tls.setPrivateKey(QSslKey(contentOf("localhost.key"), QSsl::Ec));
    if (tls.localCertificate().isNull() || tls.privateKey().isNull())
        qFatal("Qt cannot read the certificate of the tests");
    return tls;
}

TrustedTestAuthority::TrustedTestAuthority()
    : m_before(QSslConfiguration::defaultConfiguration())
{
    QSslConfiguration trusting = m_before;
    trusting.addCaCertificate(QSslCertificate(contentOf("authority.pem")));
    QSslConfiguration::setDefaultConfiguration(trusting);
}

TrustedTestAuthority::~TrustedTestAuthority()
{
    QSslConfiguration::setDefaultConfiguration(m_before);
}
