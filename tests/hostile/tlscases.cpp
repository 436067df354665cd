// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Servers that are not who they say they are.

#include "case.h"

#include "common/certificate.h"

#include <QSslConfiguration>
#include <QTemporaryDir>
#include <QTest>

namespace Varnel::Test {

namespace {

/** Certificates made with the openssl program, and an authority of their own that this process trusts. */
class Authority final
{
public:
    Authority()
    {
        openssl("req -x509 -newkey rsa:2048 -nodes -keyout ca.key -out ca.crt -subj /CN=authority -days 2");
        openssl(
            "req -x509 -newkey rsa:2048 -nodes -keyout other.key -out other.crt -subj /CN=stranger -days 2");
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.addCaCertificate(readCertificate(m_directory.path(), "ca").localCertificate());
        QSslConfiguration::setDefaultConfiguration(configuration);
    }

    /** Signed by @p issuer, or by itself if that is "leaf". */
    [[nodiscard]] QSslConfiguration server(
        const QString &issuer,
        const QString &host,
        const QString &from = "20200101000000Z",
        const QString &to = "20990101000000Z")
    {
        const QString signing
            = issuer == "leaf" ? QString() : QString(" -CA %1.crt -CAkey %1.key").arg(issuer);
        openssl(
            QString(
                "req -x509 -newkey rsa:2048 -nodes -keyout leaf.key -out leaf.crt -subj /CN=%1 -addext "
                "subjectAltName=%1 -addext basicConstraints=critical,CA:FALSE -not_before %2 -not_after %3%4")
                .arg(host, from, to, signing));
        return readCertificate(m_directory.path(), "leaf");
    }

private:
    void openssl(const QString &command)
    {
        QString arguments = command;
        // A name for the subject, the same with its kind for the list of names.
        arguments.replace("subjectAltName=127", "subjectAltName=IP:127")
            .replace("subjectAltName=w", "subjectAltName=DNS:w");
        runOpenssl(m_directory.path(), arguments.split(' '));
    }

    QTemporaryDir m_directory;
};

Case tls(const QString &name, End end, const std::function<QSslConfiguration(Authority &)> &configuration)
{
    return {
        .name = name,
        .end = end,
        .prepare =
            [configuration](World &world) {
                Authority authority;
                world.encrypt(configuration(authority), "127.0.0.1");
            },
        .isCuredByRestart = end != End::Installed};
}

const QString HERE = "127.0.0.1";

} // namespace

QList<Case> tlsCases()
{
    return {
        tls("honest", End::Installed, [](Authority &authority) { return authority.server("ca", HERE); }),
        tls("honest, and would rather speak HTTP/2",
            End::Installed,
            [](Authority &authority) {
                QSslConfiguration configuration = authority.server("ca", HERE);
                configuration.setAllowedNextProtocols(
                    {QSslConfiguration::ALPNProtocolHTTP2, QSslConfiguration::NextProtocolHttp1_1});
                return configuration;
            }),
        tls("signed by itself",
            End::NotAnswered,
            [](Authority &authority) { return authority.server("leaf", HERE); }),
        tls("signed by a stranger",
            End::NotAnswered,
            [](Authority &authority) { return authority.server("other", HERE); }),
        tls("expired",
            End::NotAnswered,
            [](Authority &authority) {
                return authority.server("ca", HERE, "20200101000000Z", "20200201000000Z");
            }),
        tls("not yet valid",
            End::NotAnswered,
            [](Authority &authority) {
                return authority.server("ca", HERE, "20980101000000Z", "20990101000000Z");
            }),
        tls("for another host",
            End::NotAnswered,
            [](Authority &authority) { return authority.server("ca", "www.example.org"); }),
        {.name = "no TLS behind an address that says so",
         .end = End::NotAnswered,
         .prepare =
             [](World &world) {
                 const QString entry = world.repositoryEntry().replace("http://", "https://");
                 world.setSetting("Repositories", QStringList{entry});
             },
         .isCuredByRestart = true},
        {.name = "TLS behind an address that says no",
         .end = End::NotAnswered,
         .prepare =
             [](World &world) {
                 Authority authority;
                 world.encrypt(authority.server("ca", HERE), HERE);
                 const QString entry = world.repositoryEntry().replace("https://", "http://");
                 world.setSetting("Repositories", QStringList{entry});
             },
         .isCuredByRestart = true},
    };
}

} // namespace Varnel::Test
