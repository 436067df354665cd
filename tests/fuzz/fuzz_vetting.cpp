// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Archives: the judgement comes, and judging what was made of them comes to the same end.

#include "service/archivevetting.h"

#include <QFile>
#include <QTemporaryDir>

using namespace Varnel::Internal;

namespace {

constexpr qint64 FREE = Q_INT64_C(16) * 1024 * 1024; // bytes, so that no input takes long

ArchiveVerdict judge(const QByteArray &archive, const QString &file)
{
    const ArchiveVerdict verdict = vetArchive(archive, file, FREE, {});
    if (verdict.isAccepted != verdict.reason.isEmpty())
        qFatal("accepted with a reason to refuse, or refused without");
    const QString top = verdict.topDirectory;
    if (top == "." || top == ".." || top.contains('/') || (!top.isEmpty() && !verdict.isAccepted))
        qFatal("a top directory that is none");
    return verdict;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QTemporaryDir &directory = *new QTemporaryDir; // the fuzzer exits from within
    const QString path = directory.filePath("archive.tar.gz");
    const QByteArray archive(reinterpret_cast<const char *>(data), qsizetype(size));

    const ArchiveVerdict verdict = judge(archive, path);

    if (!verdict.isAccepted)
        return 0;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no fresh archive");
    const ArchiveVerdict again = judge(file.readAll(), path);
    if (!again.isAccepted || again.topDirectory != verdict.topDirectory)
        qFatal("judged otherwise a second time: %s", qPrintable(again.reason));
    QFile::remove(path);
    return 0;
}
