// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What the picture of a tile gives reason to say.

#pragma once

#include "report.h"

QT_BEGIN_NAMESPACE
class QImage;
QT_END_NAMESPACE

namespace Varnel::Check {

/** What the answer to the request for an avatar was. */
struct AvatarAnswer
{
    QSize size = {}; ///< empty: it cannot be decoded
    std::optional<FailedRequest> failure = {};
};

/** The picture in a file of the project, decoded as the project's avatar is; null if it cannot be. */
[[nodiscard]] QImage readIcon(const QString &file);

/** As a tile shows it. */
[[nodiscard]] QByteArray tilePicture(const QImage &image);

/** @p avatar is what was asked for, if the project has one. */
[[nodiscard]] Findings
judgePicture(const QString &path, const PictureReport &picture, const std::optional<AvatarAnswer> &avatar);

} // namespace Varnel::Check
