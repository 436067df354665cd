// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What is written to the log, by category.

#pragma once

#include <QMutex>
#include <QString>
#include <QStringList>

namespace Varnel::Test {

/** Switches the plug-in's debug output on and records all debug output while it lives. One at a time. */
class LogRecorder final
{
public:
    explicit LogRecorder(const QString &rules = "zel.varnel.plugin*.debug=true");
    ~LogRecorder();
    Q_DISABLE_COPY_MOVE(LogRecorder)

    /** The lines of one category, in their order. */
    [[nodiscard]] QStringList lines(QByteArrayView category) const;
    /** All lines of the plug-in, each with the last part of its category's name and a colon. */
    [[nodiscard]] QStringList pluginLines() const;
    void clear();

    static constexpr char MAIN[] = "zel.varnel.plugin";
    static constexpr char API[] = "zel.varnel.plugin.api";
    static constexpr char ARCHIVE[] = "zel.varnel.plugin.archive";
    static constexpr char SERVICE[] = "zel.varnel.plugin.service";

private:
    static void record(QtMsgType type, const QMessageLogContext &context, const QString &text);

    struct Line
    {
        QByteArray category;
        QString text;
    };
    mutable QMutex m_lock; // downloads write from their own threads
    QList<Line> m_lines;
    QtMessageHandler m_previous = nullptr;
};

} // namespace Varnel::Test
