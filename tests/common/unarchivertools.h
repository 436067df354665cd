// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Programs for the IDE's unarchiver to find.

#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

namespace Varnel::Test {

/** Holds the programs that the IDE finds, instead of those in the search path, as long as it lives. */
class Tools final
{
public:
    Tools();
    /** Nothing but a "cmake" that is this script. */
    explicit Tools(const QByteArray &script);
    ~Tools();
    Q_DISABLE_COPY_MOVE(Tools)

    [[nodiscard]] QString filePath(const QString &name) const { return m_directory.filePath(name); }
    [[nodiscard]] bool has(const QString &name) const { return QFile::exists(filePath(name)); }
    void openGate() const;

private:
    const QTemporaryDir m_directory;
};

/**
 * A script for them. Leaves a file "begun-" and the example's name, and one named like the example once that
 * is unpacked; then it takes its time until the gate is open.
 */
inline constexpr char GATED[] = R"(
name=${4##*/}
name=${name%-??????.tar.gz}
: > "$tools/begun-$name"
tar xvzf "$4" || exit
: > "$tools/$name"
while [ -e "$tools/$name" ] && ! [ -e "$tools/gate" ]; do sleep 0.01; done
)";

} // namespace Varnel::Test
