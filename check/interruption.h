// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

namespace Varnel::Check {

/**
 * Ctrl+C, and what else asks a program to end or tells it that its terminal has gone (SIGINT, SIGTERM,
 * SIGHUP). While the object lives they end nothing by themselves, so that the program can tidy up. One that
 * was ignored stays so, as nohup wants it. One object at a time; needs an application object.
 */
class Interruption final : public QObject
{
    Q_OBJECT

public:
    Interruption();
    ~Interruption() override;

    [[nodiscard]] bool hasCome() const;

    /** Writes all of @p bytes, unless an error or the interruption comes first, also while nobody reads. */
    [[nodiscard]] bool write(int descriptor, const QByteArray &bytes) const;

signals:
    /** From the event loop, once. */
    void came();

private:
    const int m_event; // readable once it has come
};

} // namespace Varnel::Check
