// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Writes small archives of many kinds into a directory, for fuzz_vetting to start from.
// Usage: fuzz_seeds DIRECTORY

#include "common/archivebuilder.h"

#include <archive.h>

#include <QDir>
#include <QFile>
#include <QMap>

using namespace Varnel::Test;

namespace {

QMap<QString, QByteArray> tarSeeds()
{
    const TarBuilder project = TarBuilder().directory("demo-main-1/").file("demo-main-1/CMakeLists.txt");
    return {
        {"tar", project.tar()},
        {"two", TarBuilder().file("a/x").file("b/x").symbolicLink("b/l", "../a/x").tar()},
        {"links",
         TarBuilder(project)
             .symbolicLink("demo-main-1/l", "/etc")
             .hardLink("demo-main-1/h", "demo-main-1/l")
             .tar()},
        {"pax",
         TarBuilder()
             .records({{"comment", "4f0c"}}, 'g')
             .records({{"path", "demo/renamed"}})
             .file("x")
             .tar()},
        {"long", TarBuilder().file("demo/" + QByteArray(200, 'n')).tar()},
        {"gnu",
         TarBuilder()
             .add({.path = "././@LongLink", .type = 'L', .content = QByteArray("demo/x\0", 7)})
             .file("y")
             .tar()},
        {"sparse",
         TarBuilder()
             .records({{"GNU.sparse.major", "1"}, {"GNU.sparse.minor", "0"}, {"GNU.sparse.realsize", "9999"}})
             .file("demo/s", QByteArray("1\n0\n0\n").leftJustified(512, '\0'))
             .tar()},
        {"gzip", project.tarGz()},
        {"bzip2", compressed(project.tar(), ARCHIVE_FILTER_BZIP2)},
        {"xz", compressed(project.tar(), ARCHIVE_FILTER_XZ)},
        {"zstd", compressed(project.tar(), ARCHIVE_FILTER_ZSTD)},
        {"compress", compressed(project.tar(), ARCHIVE_FILTER_COMPRESS)},
    };
}

QMap<QString, QByteArray> otherSeeds()
{
    const QList<TarEntry> files{{.path = "demo/a", .content = "content"}, {.path = "demo/b"}};
    return {
        {"zip", packed(files, ARCHIVE_FORMAT_ZIP, ARCHIVE_FILTER_NONE)},
        {"7zip", packed(files, ARCHIVE_FORMAT_7ZIP, ARCHIVE_FILTER_NONE)},
        {"cpio", packed(files, ARCHIVE_FORMAT_CPIO_SVR4_NOCRC, ARCHIVE_FILTER_NONE)},
        {"mtree", "#mtree\n./demo type=dir\n./demo/a type=file size=4\n"},
    };
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2 || !QDir().mkpath(QString::fromLocal8Bit(argv[1])))
        return 2;
    QMap<QString, QByteArray> seeds = tarSeeds();
    seeds.insert(otherSeeds());
    for (auto it = seeds.cbegin(); it != seeds.cend(); ++it) {
        QFile file(QDir(QString::fromLocal8Bit(argv[1])).filePath(it.key()));
        if (!file.open(QIODevice::WriteOnly) || file.write(it.value()) != it.value().size())
            return 1;
    }
    return 0;
}
