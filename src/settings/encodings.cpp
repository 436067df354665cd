// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "settings/encodings.h"

#include "plugin/logging.h"

namespace Varnel::Internal {

namespace {

constexpr QChar SEPARATOR = u'|';
constexpr char16_t DATE_FORMAT[] = u"dd.MM.yyyy";

void logWrong(const QString &text)
{
    qCDebug(Log::main) << "Skipping wrong setting in item:" << text;
}

void logDuplicatedName(const QString &text)
{
    qCDebug(Log::main) << "Skipping duplicated repository name in item:" << text;
}

} // namespace

QHash<QString, Settings::RepositoryInfo> fromStringList(const QStringList &texts)
{
    QHash<QString, Settings::RepositoryInfo> repositories;
    QSet<QUrl> seenUrls;
    for (const QString &text : texts) {
        if (text.isEmpty())
            continue;
        QStringList parts = text.split(SEPARATOR);
        if (parts.size() < 2 || parts.at(0).isEmpty() || parts.at(1).isEmpty()) {
            logWrong(text);
            continue;
        }
        if (repositories.contains(parts.constFirst())) {
            logDuplicatedName(text);
            continue;
        }
        const QString name = parts.takeFirst();
        const QUrl url(parts.takeFirst(), QUrl::TolerantMode);
        if (seenUrls.contains(url)) {
            qCDebug(Log::main) << "Skipping duplicated repository url in item:" << text;
            continue;
        }
        seenUrls.insert(url);
        // Empty names are kept: an entry without examples ends in a separator and comes back with one.
        Settings::RepositoryInfo info;
        info.url = url;
        info.examples = QSet<QString>(parts.cbegin(), parts.cend());
        repositories.insert(name, info);
    }
    return repositories;
}

QStringList toStringList(const QHash<QString, Settings::RepositoryInfo> &repositories)
{
    QStringList texts;
    for (auto it = repositories.cbegin(); it != repositories.cend(); ++it) {
        const QStringList examples(it->examples.cbegin(), it->examples.cend());
        // One substitution after the other: a marker inside a name takes part in the later ones.
        texts.append(QStringLiteral("%1%4%2%4%3")
                         .arg(it.key())
                         .arg(it->url.toString())
                         .arg(examples.join(SEPARATOR))
                         .arg(SEPARATOR));
    }
    return texts;
}

QHash<QString, QDate> lastCheckedDateFromStringList(const QStringList &texts)
{
    constexpr int BASE_YEAR = 1900;
    QHash<QString, QDate> dates;
    for (const QString &text : texts) {
        if (text.isEmpty())
            continue;
        const QStringList parts = text.split(SEPARATOR);
        if (parts.size() != 2) {
            logWrong(text);
            continue;
        }
        if (dates.contains(parts.at(0))) {
            logDuplicatedName(text);
            continue;
        }
        dates.insert(parts.at(0), QDate::fromString(parts.at(1), DATE_FORMAT, BASE_YEAR));
    }
    return dates;
}

QStringList lastUpdateTimeToStringList(const QHash<QString, QDate> &dates)
{
    QStringList texts;
    for (auto it = dates.cbegin(); it != dates.cend(); ++it) {
        texts.append(QStringLiteral("%1%2%3").arg(it.key()).arg(SEPARATOR).arg(it->toString(DATE_FORMAT)));
    }
    return texts;
}

} // namespace Varnel::Internal
