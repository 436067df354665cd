// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "common/pagetest.h"

QT_BEGIN_NAMESPACE
class QSpinBox;
QT_END_NAMESPACE

namespace Varnel::Demo {
class DemoServer;
struct Project;
} // namespace Varnel::Demo

namespace Varnel::Test {

/** Test of what becomes of the page's changes when they are applied. */
class ApplyTest : public PageTest
{
    Q_OBJECT

protected:
    /** Opens the page of the plug-in that is already started. */
    void openPage();
    /** Configures, starts and opens the page with a repository that the server lists. */
    void openPageWithServer(const Demo::DemoServer &server);
    [[nodiscard]] QSpinBox *interval() const;
    /** What is stored of a repository besides its name and address, sorted. */
    [[nodiscard]] QStringList storedRemovals(const QString &repository);
};

[[nodiscard]] Demo::Project makeProject(qint64 id, const QString &path);
[[nodiscard]] QString archiveRoute(int id);

} // namespace Varnel::Test
