// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Lines of a settings file: whatever they are, the record has names, and no address twice.

#include "settings/encodings.h"

#include <QSet>

using namespace Varnel::Internal;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const QStringList lines = text.split(u'\n');

    const auto repositories = fromStringList(lines);
    QSet<QUrl> addresses;
    for (auto it = repositories.cbegin(); it != repositories.cend(); ++it) {
        if (it.key().isEmpty() || addresses.contains(it->url))
            qFatal("nameless repository, or an address twice");
        addresses.insert(it->url);
    }
    if (toStringList(repositories).size() != repositories.size())
        qFatal("a repository is lost");

    const auto dates = lastCheckedDateFromStringList(lines);
    if (text.contains(u'%')) // a marker in a name takes part in the substitutions: odd, but long in use
        return 0;
    const auto again = lastCheckedDateFromStringList(lastUpdateTimeToStringList(dates));
    for (auto it = dates.cbegin(); it != dates.cend(); ++it) {
        const bool isWritable = it->isValid() && it->year() >= 1900 && it->year() < 10000;
        if (isWritable && again.value(it.key()) != it.value())
            qFatal("a date is not kept");
    }
    return 0;
}
