// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Certificates of servers on this machine, made with the openssl program; what fails ends the test program.

#pragma once

#include <QSslConfiguration>
#include <QString>
#include <QStringList>

namespace Varnel::Test {

/** Runs the program in a directory. */
void runOpenssl(const QString &directory, const QStringList &arguments);
/** What NAME.crt and NAME.key in a directory are for a server. */
[[nodiscard]] QSslConfiguration readCertificate(const QString &directory, const QString &name);

/** Of a server on this machine, with a certificate that nobody trusts. */
[[nodiscard]] QSslConfiguration selfSigned();

/** One that this process trusts while the object lives. */
class TrustedCertificate final
{
public:
    TrustedCertificate();
    ~TrustedCertificate();
    Q_DISABLE_COPY_MOVE(TrustedCertificate)

    [[nodiscard]] const QSslConfiguration &configuration() const { return m_configuration; }

private:
    const QSslConfiguration m_configuration = selfSigned();
    const QSslConfiguration m_previous = QSslConfiguration::defaultConfiguration();
};

} // namespace Varnel::Test
