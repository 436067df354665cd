// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The search for a text in a file: the same result as reading the file whole, also around the border of two
// blocks.

#include "service/projectfiles.h"

#include <QFile>
#include <QTemporaryFile>

using namespace Varnel::Internal;

namespace {

constexpr qsizetype BLOCK_SIZE = 1 << 20; // bytes, as much as is read at once

bool containsWhole(const QString &path, const QByteArray &needle)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Text) && file.readAll().contains(needle);
}

} // namespace

// First byte: length of the needle; second: how far before the border the text begins; the needle; the text.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 4)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const qsizetype needleSize = std::min<qsizetype>(1 + data[0] % 16, bytes.size() - 3);
    const QByteArray needle = bytes.sliced(2, needleSize);
    if (needle.contains('\r'))
        return 0; // never in a text that is read in text mode, and never looked for
    const bool isAtBorder = data[0] & 0x80;
    const QByteArray content
        = QByteArray(isAtBorder ? BLOCK_SIZE - data[1] : 0, '-') + bytes.sliced(2 + needleSize);

    static QTemporaryFile file;
    if (!file.isOpen() && !file.open())
        qFatal("no temporary file");
    file.resize(0);
    file.seek(0);
    file.write(content);
    file.flush();
    if (fileContains(file.fileName(), needle) != containsWhole(file.fileName(), needle))
        qFatal("another result than reading it whole");
    return 0;
}
