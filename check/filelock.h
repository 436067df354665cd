// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace Varnel::Check {

/**
 * A file that one process at a time has, as long as the object lives. The kernel keeps the lock, so that a
 * kill ends it, also in a container, whose process numbers and host name mean nothing to the next one.
 */
class FileLock final
{
public:
    enum class State {
        Held,
        Taken,  ///< by somebody else
        Failed, ///< there can be no such file
    };

    /** Makes the file if it is missing; does not wait. */
    explicit FileLock(const QString &path);
    /** Removes the file if the lock is held. */
    ~FileLock();
    Q_DISABLE_COPY_MOVE(FileLock)

    [[nodiscard]] State state() const { return m_state; }

private:
    [[nodiscard]] bool isStillThere() const;
    void close();

    const QByteArray m_path;
    int m_descriptor = -1;
    State m_state = State::Failed;
};

} // namespace Varnel::Check
