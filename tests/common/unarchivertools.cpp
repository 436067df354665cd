// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/unarchivertools.h"

#include "common/files.h"

#include <utils/environment.h>

namespace Varnel::Test {

namespace {

// The IDE's libraries look at their own copy of the environment.
void setSearchPath(const QString &path)
{
    Utils::Environment::modifySystemEnvironment({{"PATH", path}});
}

} // namespace

Tools::Tools()
{
    setSearchPath(m_directory.path());
}

Tools::Tools(const QByteArray &script)
{
    writeFile(filePath("cmake"), "#!/bin/sh\ntools='" + m_directory.path().toUtf8() + "'\n" + script);
    if (!QFile::setPermissions(filePath("cmake"), QFile::ReadOwner | QFile::ExeOwner))
        qFatal("no tool");
    setSearchPath(m_directory.path() + ':' + qEnvironmentVariable("PATH"));
}

Tools::~Tools()
{
    setSearchPath(qEnvironmentVariable("PATH"));
}

void Tools::openGate() const
{
    writeFile(filePath("gate"), "");
}

} // namespace Varnel::Test
