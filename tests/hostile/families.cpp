// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The whole corpus.

#include "case.h"

namespace Varnel::Test {

const QList<Family> &families()
{
    static const QList<Family> ALL{
        {"Archives", archiveCases()},
        {"Archives with odd rights", withOddRights(archiveCases())},
        {"Archives without cmake", withoutCmake(archiveCases())},
        {"Archives that readers see differently", readerCases()},
        {"Archives and what is on the disk", diskCases()},
        {"Several archives", sequenceCases()},
        {"JSON", jsonCases()},
        {"Paths and names", nameCases()},
        {"Pictures", pictureCases()},
        {"Descriptions", descriptionCases()},
        {"HTTP", httpCases()},
        {"TLS", tlsCases()},
        {"Settings files", settingsCases()},
    };
    return ALL;
}

} // namespace Varnel::Test
