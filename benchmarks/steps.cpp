// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "steps.h"

#include "client/repository.h"
#include "service/archivevetting.h"
#include "service/placement.h"
#include "service/projectfiles.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Varnel::Bench {

using Internal::Example;
using Internal::Repository;

bool vet(const QByteArray &archive)
{
    return Internal::vetArchive(archive, -1, {}).isAccepted;
}

QString chooseFile(const QString &directory)
{
    return Internal::findFileToOpen(directory);
}

qsizetype readListing(const QByteArray &body)
{
    Repository::Examples examples;
    const QJsonArray projects = QJsonDocument::fromJson(body).object().value("projects").toArray();
    for (const QJsonValue project : projects) {
        const auto example = Repository::ExamplePtr::create(project.toObject());
        if (example->isValid())
            examples.append(example);
    }
    return examples.size();
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
