// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The subject's archive, and the short forms of cases with one.

#include "subject.h"

#include <QFile>

namespace Varnel::Test {

QByteArray inHome(const QByteArray &name)
{
    return QFile::encodeName(World::path("home/")) + name;
}

TarBuilder project()
{
    return TarBuilder()
        .directory(TOP)
        .file(TOP + "CMakeLists.txt", "project(subject)\n")
        .file(TOP + "main.cpp", "int main() {}\n");
}

std::function<void(World &)> sending(const QByteArray &archive)
{
    return [archive](World &world) { world.subject().archive = archive; };
}

Case refused(const QString &name, const std::function<TarBuilder()> &make)
{
    return {.name = name, .end = End::NotUnpacked, .tar = make};
}

Case installed(const QString &name, const std::function<TarBuilder()> &make)
{
    return {.name = name, .end = End::Installed, .tar = make};
}

Case ending(End end, const QString &name, const QByteArray &archive)
{
    return {.name = name, .end = end, .prepare = sending(archive)};
}

} // namespace Varnel::Test
