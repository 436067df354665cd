// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "progressline.h"

#include <cstdio>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

constexpr char TO_BEGINNING_AND_CLEAR[] = "\r\x1b[K";

} // namespace

ProgressLine::ProgressLine(bool isWanted)
    : m_isShown(isWanted && ::isatty(STDERR_FILENO) == 1)
{
    m_since.start();
}

ProgressLine::~ProgressLine()
{
    clear();
}

void ProgressLine::show(const Progress &progress)
{
    if (m_isShown)
        std::fprintf(
            stderr,
            "%s%s",
            TO_BEGINNING_AND_CLEAR,
            qUtf8Printable(text(progress, std::chrono::milliseconds(m_since.elapsed()))));
}

void ProgressLine::clear()
{
    if (m_isShown)
        std::fputs(TO_BEGINNING_AND_CLEAR, stderr);
}

QString ProgressLine::text(const Progress &progress, std::chrono::milliseconds elapsed)
{
    QString text = u"%1 of %2 examples, %3 MB"_s.arg(progress.done)
                       .arg(progress.all)
                       .arg(double(progress.bytes) / 1e6, 0, 'f', 1);
    if (progress.done > 0 && progress.done < progress.all) {
        const auto left = elapsed * (progress.all - progress.done) / progress.done;
        text += u", about %1 s left"_s.arg((left.count() + 999) / 1000);
    }
    return text;
}

} // namespace Varnel::Check
