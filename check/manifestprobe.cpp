// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "manifestprobe.h"

#include "plugin/constants.h"

#include <QDomDocument>
#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

namespace {

QString below(const QString &directory, const QString &path)
{
    for (const QString &base : {directory, QFileInfo(directory).canonicalFilePath()}) {
        if (!base.isEmpty() && path.startsWith(base + u'/'))
            return u'.' + path.sliced(base.size());
    }
    return path;
}

} // namespace

std::optional<ManifestReport> readManifest(const QString &directory)
{
    QFile file(directory + u'/' + QLatin1StringView(Constants::MANIFEST_FILE));
    QDomDocument document;
    if (!file.open(QIODevice::ReadOnly) || !document.setContent(&file))
        return {};
    const QDomElement example = document.elementsByTagName(u"example"_s).at(0).toElement();
    return ManifestReport{
        .name = example.attribute(u"name"_s),
        .projectPath = example.attribute(u"projectPath"_s),
        .imageUrl = below(directory, example.attribute(u"imageUrl"_s)),
        .description = example.firstChildElement(u"description"_s).text(),
        .tags = example.firstChildElement(u"tags"_s).text().split(u',', Qt::SkipEmptyParts),
        .fileToOpen = example.firstChildElement(u"fileToOpen"_s).text()};
}

} // namespace Varnel::Check
