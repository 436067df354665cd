// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "client/repository.h"

#include <QString>
#include <QStringList>

namespace Varnel::Internal {

class Manifest;

/**
 * Makes an installed example of the newest unpacked copy. Manifest and picture are written before the copy takes the
 * example's place, so that a process killed at any moment leaves the old example, none, or the new one whole.
 * What is wrong with the project or the template is told in debug lines. Main thread; may take as long as reading the project takes.
 */
class Registration final
{
public:
    Registration(
        const QString &repositoryName,
        const Repository::ExamplePtr &example,
        const Repository::Examples &listed);

    /** False if it failed; then no directory of the example is left. */
    [[nodiscard]] bool run();

private:
    [[nodiscard]] bool placeAndWrite(const QStringList &copies);
    [[nodiscard]] bool write(const QString &directory);
    [[nodiscard]] bool writeImage(const QString &directory, Manifest *manifest);
    [[nodiscard]] QString iconUrl(const QString &directory) const;
    void removeCopies(const QStringList &names);
    void removeFailed(const QStringList &copies);

    const QString m_repositoryName;
    const Repository::ExamplePtr m_example;
    const Repository::Examples m_listed;
    const QString m_path;
    const QString m_directory; // where the example is in the end
};

} // namespace Varnel::Internal
