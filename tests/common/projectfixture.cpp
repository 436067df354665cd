// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/projectfixture.h"

#include "common/files.h"

namespace Varnel::Test {

void ProjectFixture::init()
{
    m_directory = std::make_unique<QTemporaryDir>();
    m_project = m_directory->filePath("project");
    makeDirectory(m_project);
}

} // namespace Varnel::Test
