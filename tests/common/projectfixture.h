// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What tests of a project's files begin with.

#pragma once

#include <QObject>
#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace Varnel::Test {

/** For each test: an empty directory "project" in a temporary one. */
class ProjectFixture : public QObject
{
    Q_OBJECT

protected:
    static constexpr char MAIN[] = "int main(int argc, char **argv)";

    [[nodiscard]] QString path(const QString &name) const { return m_project + '/' + name; }

    std::unique_ptr<QTemporaryDir> m_directory;
    QString m_project;

private slots:
    void init();
};

} // namespace Varnel::Test
