// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

namespace Varnel::Check {

/** The first few of what a finding is about, and how many there are. */
class Samples final
{
public:
    void add(const QString &sample)
    {
        if (m_samples.size() < MOST_NAMED)
            m_samples.append(sample);
        ++m_count;
    }
    [[nodiscard]] bool isEmpty() const { return m_count == 0; }
    [[nodiscard]] QString text() const
    {
        const QString named = m_samples.join(QLatin1StringView(", "));
        return m_count <= MOST_NAMED
                   ? named
                   : QStringLiteral("%1 and %2 more").arg(named, QString::number(m_count - MOST_NAMED));
    }

private:
    static constexpr qsizetype MOST_NAMED = 3;

    QStringList m_samples;
    qsizetype m_count = 0;
};

} // namespace Varnel::Check
