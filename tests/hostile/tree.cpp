// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "tree.h"

#include <QCryptographicHash>
#include <QFile>

#include <filesystem>

#include <sys/stat.h>

namespace Varnel::Test {

namespace {

namespace fs = std::filesystem;

QByteArray digest(const fs::path &path)
{
    QFile file(QFile::decodeName(path.c_str()));
    std::FILE *stream = std::fopen(path.c_str(), "rb"); // the name need not be UTF-8
    if (!stream || !file.open(stream, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        qFatal("cannot read %s", path.c_str());
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!hash.addData(&file))
        qFatal("cannot read %s to its end", path.c_str());
    return hash.result().toHex();
}

QByteArray description(const fs::path &path)
{
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0)
        qFatal("cannot look at %s", path.c_str());
    QByteArray text = "mode " + QByteArray::number(status.st_mode, 8) + " time "
                      + QByteArray::number(qint64(status.st_mtime));
    if (S_ISREG(status.st_mode))
        text += " content " + digest(path);
    if (S_ISLNK(status.st_mode))
        text += " target " + QByteArray(fs::read_symlink(path).c_str());
    return text;
}

} // namespace

Tree readTree(const QString &directory)
{
    const fs::path base(QFile::encodeName(directory).toStdString());
    Tree tree;
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(base))
        tree.insert(entry.path().lexically_relative(base).c_str(), description(entry.path()));
    return tree;
}

QStringList differences(const Tree &before, const Tree &after)
{
    QStringList lines;
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        if (after.value(it.key()) != it.value())
            lines.append(
                QString::fromUtf8(it.key() + ": " + it.value() + " -> " + after.value(it.key(), "gone")));
    }
    for (auto it = after.cbegin(); it != after.cend(); ++it) {
        if (!before.contains(it.key()))
            lines.append(QString::fromUtf8(it.key() + ": new"));
    }
    return lines;
}

} // namespace Varnel::Test
