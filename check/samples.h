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
    explicit Samples(qsizetype mostNamed = 3)
        : m_mostNamed(mostNamed)
    {
    }

    void add(const QString &sample)
    {
        if (m_samples.size() < m_mostNamed)
            m_samples.append(sample);
        ++m_count;
    }
    [[nodiscard]] bool isEmpty() const { return m_count == 0; }
    [[nodiscard]] QString text() const
    {
        const QString named = m_samples.join(QLatin1StringView(", "));
        return m_count <= m_mostNamed
                   ? named
                   : QStringLiteral("%1 and %2 more").arg(named, QString::number(m_count - m_mostNamed));
    }

private:
    const qsizetype m_mostNamed;
    QStringList m_samples;
    qsizetype m_count = 0;
};

} // namespace Varnel::Check
