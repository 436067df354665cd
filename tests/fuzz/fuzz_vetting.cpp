// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Archives: the judgement comes, and what is let through stays below its directory.

#include "service/archivevetting.h"

#include <QByteArrayList>

using namespace Varnel::Internal;

namespace {

bool isPlain(const QByteArray &path)
{
    const QByteArrayList parts = path.split('/');
    return !path.isEmpty() && !parts.contains("") && !parts.contains(".") && !parts.contains("..");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    constexpr qint64 FREE = Q_INT64_C(16) * 1024 * 1024; // bytes, so that no input takes long
    const QByteArray archive(reinterpret_cast<const char *>(data), qsizetype(size));

    const ArchiveVerdict verdict = vetArchive(archive, FREE, {});

    if (verdict.isAccepted != verdict.reason.isEmpty())
        qFatal("accepted with a reason to refuse, or refused without");
    if (!verdict.topDirectory.isEmpty()
        && (!isPlain(verdict.topDirectory) || verdict.topDirectory.contains('/')))
        qFatal("a top directory that is none");
    for (const QByteArray &entry : verdict.entries) {
        if (!isPlain(entry))
            qFatal("a path that is not plain");
    }
    return 0;
}
