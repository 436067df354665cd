// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Part of the build: writes the manual page and the completions into a directory.
//
// Usage: check_documents DIRECTORY

#include "documents.h"

#include <QFile>

#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace Varnel::Check;

namespace {

bool write(const QString &name, const QString &text)
{
    QFile file(name);
    const QByteArray bytes = text.toUtf8();
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2)
        return EXIT_FAILURE;
    const QString directory = QFile::decodeName(argv[1]) + u'/';
    const bool isWritten = write(directory + u"varnel-check.1"_s, manualPage())
                           && write(directory + u"varnel-check.bash"_s, bashCompletion())
                           && write(directory + u"_varnel-check"_s, zshCompletion())
                           && write(directory + u"varnel-check.fish"_s, fishCompletion());
    return isWritten ? EXIT_SUCCESS : EXIT_FAILURE;
}
