// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "common/uifixture.h"
#include "ui/optionswidget.h"

#include <QObject>

#include <memory>

QT_BEGIN_NAMESPACE
class QComboBox;
QT_END_NAMESPACE

namespace Utils {
class FancyLineEdit;
}

namespace Varnel::Test {

/** Chooses examples in the dialog that the page opens with its button "Add...". */
void addExamples(OptionsWidget &page, const QStringList &names);
/** Selects rows of the page and presses "Remove". */
void removeExamples(OptionsWidget &page, const QStringList &names);

/** Test of the options page: each of its functions begins with no settings, nothing installed and no page. */
class PageTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fixture.reset(); }
    void cleanup() { m_page.reset(); }

protected:
    /** Starts the plug-in with these repositories and opens the page. */
    void openPage(const QStringList &repositories);
    /** Message boxes look for the active window, and where there is none for the IDE's. */
    void showPage();
    void reopenPage();

    template<class Widget>
    [[nodiscard]] Widget *find(const char *name) const
    {
        return m_page->findChild<Widget *>(QLatin1StringView(name));
    }
    [[nodiscard]] QListWidget *list() const;
    [[nodiscard]] QComboBox *repositories() const;
    [[nodiscard]] Utils::FancyLineEdit *filter() const;
    void clickAdd() const;
    void clickRemove() const;
    void add(const QStringList &names) { addExamples(*m_page, names); }
    void remove(const QStringList &names) { removeExamples(*m_page, names); }

    UiFixture m_fixture;
    std::unique_ptr<OptionsWidget> m_page;
};

} // namespace Varnel::Test
