// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "common/pagetest.h"

#include "ui/examplesdialog.h"

#include <utils/fancylineedit.h>

#include <QComboBox>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

namespace Varnel::Test {

using Internal::ExamplesDialog;

void addExamples(OptionsWidget &page, const QStringList &names)
{
    WhenOpened<ExamplesDialog> choose([&names](ExamplesDialog *dialog) {
        selectRows(dialog->findChild<QListWidget *>("examplesListWidget"), names);
        dialog->accept();
    });
    page.findChild<QPushButton *>("addButton")->click();
    QVERIFY(choose.happened());
}

void removeExamples(OptionsWidget &page, const QStringList &names)
{
    selectRows(page.findChild<QListWidget *>("examplesListWidget"), names);
    page.findChild<QPushButton *>("removeButton")->click();
}

void PageTest::openPage(const QStringList &repositories)
{
    m_fixture.setRepositoryNames(repositories);
    m_fixture.start();
    m_page = std::make_unique<OptionsWidget>();
    waitForScans();
}

void PageTest::showPage()
{
    m_page->show();
    QVERIFY(QTest::qWaitForWindowActive(m_page.get()));
}

void PageTest::reopenPage()
{
    m_page.reset();
    m_page = std::make_unique<OptionsWidget>();
    waitForScans();
}

QListWidget *PageTest::list() const
{
    return find<QListWidget>("examplesListWidget");
}

QComboBox *PageTest::repositories() const
{
    return find<QComboBox>("repositoryComboBox");
}

Utils::FancyLineEdit *PageTest::filter() const
{
    return find<Utils::FancyLineEdit>("filterLineEdit");
}

void PageTest::clickAdd() const
{
    find<QPushButton>("addButton")->click();
}

void PageTest::clickRemove() const
{
    find<QPushButton>("removeButton")->click();
}

} // namespace Varnel::Test
