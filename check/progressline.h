// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "checker.h"

#include <QElapsedTimer>

namespace Varnel::Check {

/** One line on the standard error that is written over again and again; nothing where that is no terminal. */
class ProgressLine final
{
public:
    explicit ProgressLine(bool isWanted);
    /** Removes the line. */
    ~ProgressLine();
    Q_DISABLE_COPY_MOVE(ProgressLine)

    void show(const Progress &progress);
    void clear();

    /** "3 of 8 examples, 1.2 MB, about 5 s left". */
    [[nodiscard]] static QString text(const Progress &progress, std::chrono::milliseconds elapsed);

private:
    const bool m_isShown;
    QElapsedTimer m_since;
};

} // namespace Varnel::Check
