// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/certificate.h"

#include "common/testfiles.h"

#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QTemporaryDir>

namespace Varnel::Test {

QSslConfiguration selfSigned()
{
    const QTemporaryDir directory;
    const QString key = directory.filePath("key.pem");
    const QString certificate = directory.filePath("certificate.pem");
    const int exitCode = QProcess::execute(
        "openssl",
        {"req",
         "-x509",
         "-newkey",
         "rsa:2048",
         "-nodes",
         "-subj",
         "/CN=127.0.0.1",
         "-quiet",
         "-addext",
         "subjectAltName=IP:127.0.0.1",
         "-keyout",
         key,
         "-out",
         certificate});
    if (exitCode != 0)
        qFatal("cannot make a certificate");
    QSslConfiguration encryption;
    encryption.setPrivateKey(QSslKey(readFile(key), QSsl::Rsa));
    encryption.setLocalCertificate(QSslCertificate(readFile(certificate)));
    return encryption;
}

TrustedCertificate::TrustedCertificate()
{
    QSslConfiguration trusting = m_previous;
    trusting.addCaCertificate(m_configuration.localCertificate());
    QSslConfiguration::setDefaultConfiguration(trusting);
}

TrustedCertificate::~TrustedCertificate()
{
    QSslConfiguration::setDefaultConfiguration(m_previous);
}

} // namespace Varnel::Test
