// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What tests of downloaded archives begin with.

#pragma once

#include "common/servicefixture.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>

namespace Varnel::Test {

/** For each test: a service, which is given archives as if they had just been downloaded. */
class UnpackingFixture : public QObject
{
    Q_OBJECT

protected:
    static inline const QString UNPACKING_FAILED = "There was an error while unarchiving";
    static inline const QString REGISTRATION_FAILED = "There was an error while creating example mainfest";
    static inline const QString NO_ARCHIVE = "Downloaded file is not an archive";

    /** The status before an example is unpacked. */
    [[nodiscard]] static QString unpacking(const QString &path)
    {
        return "Unpacking example: Title of " + path;
    }
    [[nodiscard]] static QStringList successOf(const QString &path)
    {
        return {unpacking(path), "updated", "documentation changed"};
    }

    /** A project in one top directory. */
    [[nodiscard]] static QByteArray
    projectArchive(const QByteArray &top, const QByteArray &content = "content");
    [[nodiscard]] static QStringList temporaryArchives();

    /** As if the example had just been downloaded. */
    Internal::Repository::ExamplePtr download(const QString &path, const QByteArray &archive);
    [[nodiscard]] bool waitForLines(qsizetype count) const;
    /** Until whatever was downloaded before has been vetted, and started if nothing is in its way. */
    [[nodiscard]] bool waitForVetting();

    std::unique_ptr<ServiceFixture> m_fixture;

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();
};

} // namespace Varnel::Test
