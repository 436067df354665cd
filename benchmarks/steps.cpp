// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "steps.h"

#include "client/answers.h"
#include "client/repository.h"
#include "service/archivevetting.h"
#include "service/placement.h"
#include "service/projectfiles.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>

namespace Varnel::Bench {

using Internal::Repository;

bool vet(const QByteArray &archive)
{
    return Internal::vetArchive(archive, QDir::tempPath() + "/measured.tar.gz", -1, {}).isAccepted;
}

QString chooseFile(const QString &directory)
{
    return Internal::findProjectFiles(directory).fileToOpen;
}

qsizetype readListing(const QByteArray &body)
{
    return Internal::readListing(Internal::parseAnswer(body)).examples.size();
}

qsizetype listCopies(const QString &repositoryName, const QStringList &paths)
{
    Repository::Examples examples;
    for (const QString &path : paths)
        examples.append(Repository::ExamplePtr::create(QJsonObject{{"path", path}}));
    qsizetype count = 0;
    for (const QString &path : paths)
        count += Internal::findDirNames(repositoryName, path, examples).size();
    return count;
}

} // namespace Varnel::Bench
