// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "filelock.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Varnel::Check {

FileLock::FileLock(const QString &path)
    : m_path(QFile::encodeName(path))
{
    while (true) {
        m_descriptor = ::open(m_path.constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0644);
        if (m_descriptor < 0)
            return;
        // A file system that knows no locks lets everybody in, as the plug-in's own lock does.
        m_state = ::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK ? State::Taken
                                                                                        : State::Held;
        if (m_state == State::Taken || isStillThere())
            return;
        close();
    }
}

FileLock::~FileLock()
{
    if (m_state == State::Held)
        ::unlink(m_path.constData());
    close();
}

// Whoever had the lock before may have removed the file after it was opened here.
bool FileLock::isStillThere() const
{
    struct stat ours = {};
    struct stat there = {};
    return ::fstat(m_descriptor, &ours) == 0 && ::lstat(m_path.constData(), &there) == 0
           && ours.st_dev == there.st_dev && ours.st_ino == there.st_ino;
}

void FileLock::close()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
}

} // namespace Varnel::Check
