// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDomDocument>
#include <QString>
#include <QStringList>

#include <optional>

namespace Varnel::Internal {

/**
 * The file that describes one example to the IDE's Welcome screen; it fills a template of the resources.
 * Texts may hold anything: what comes out is well-formed, characters that XML forbids are dropped.
 */
class Manifest final
{
public:
    /** Empty, with a debug line, if the template cannot be used. */
    [[nodiscard]] static std::optional<Manifest> fromTemplate(const QString &repositoryName);

    void setName(const QString &title);
    void setProjectPath(const QString &path);
    void setImageUrl(const QString &url);
    void setDescription(const QString &description);
    void setTags(const QStringList &tags);
    void setFileToOpen(const QString &file);

    [[nodiscard]] QByteArray toByteArray() const;

private:
    explicit Manifest(const QDomDocument &document);

    void setText(const QString &element, const QString &text);

    QDomDocument m_document;
    QDomElement m_example;
};

/**
 * True if @p directory holds a manifest as it is written for an example of the repository. Only the beginning
 * is read: the file may be anybody's, of any size.
 */
[[nodiscard]] bool holdsManifest(const QString &directory, const QString &repositoryName);

} // namespace Varnel::Internal
