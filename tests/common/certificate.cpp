// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/certificate.h"

#include "common/files.h"

#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QTemporaryDir>

namespace Varnel::Test {

void runOpenssl(const QString &directory, const QStringList &arguments)
{
    QProcess process;
    process.setWorkingDirectory(directory);
    process.start("openssl", arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        qFatal("openssl %s: %s", qPrintable(arguments.join(' ')), process.readAllStandardError().constData());
}

QSslConfiguration readCertificate(const QString &directory, const QString &name)
{
    const QString path = directory + '/' + name;
    QSslConfiguration encryption;
    encryption.setPrivateKey(QSslKey(readFile(path + ".key"), QSsl::Rsa));
    encryption.setLocalCertificate(QSslCertificate(readFile(path + ".crt")));
    return encryption;
}

QSslConfiguration selfSigned()
{
    const QTemporaryDir directory;
    runOpenssl(
        directory.path(),
        {"req",
         "-x509",
         "-newkey",
         "rsa:2048",
         "-nodes",
         "-subj",
         "/CN=127.0.0.1",
         "-addext",
         "subjectAltName=IP:127.0.0.1",
         "-keyout",
         "server.key",
         "-out",
         "server.crt"});
    return readCertificate(directory.path(), "server");
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
