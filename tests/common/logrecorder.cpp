// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/logrecorder.h"

#include <QLoggingCategory>

namespace Varnel::Test {

namespace {

LogRecorder *current = nullptr;

} // namespace

LogRecorder::LogRecorder(const QString &rules)
{
    QLoggingCategory::setFilterRules(rules);
    current = this;
    m_previous = qInstallMessageHandler(&LogRecorder::record);
}

LogRecorder::~LogRecorder()
{
    qInstallMessageHandler(m_previous);
    current = nullptr;
    QLoggingCategory::setFilterRules({});
}

QStringList LogRecorder::lines(QByteArrayView category) const
{
    const QMutexLocker locker(&m_lock);
    QStringList result;
    for (const Line &line : m_lines) {
        if (line.category == category)
            result.append(line.text);
    }
    return result;
}

QStringList LogRecorder::pluginLines() const
{
    const QMutexLocker locker(&m_lock);
    QStringList result;
    for (const Line &line : m_lines) {
        if (line.category.startsWith(MAIN))
            result.append(QString::fromLatin1(line.category).section('.', -1) + ": " + line.text);
    }
    return result;
}

void LogRecorder::clear()
{
    const QMutexLocker locker(&m_lock);
    m_lines.clear();
}

void LogRecorder::record(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type != QtDebugMsg) {
        current->m_previous(type, context, text);
        return;
    }
    const QMutexLocker locker(&current->m_lock);
    current->m_lines.append({context.category, text});
}

} // namespace Varnel::Test
