// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What the tests of the user interface share: the started plug-in, and the user's hands.

#pragma once

#include "client/repository.h"
#include "common/ideenvironment.h"
#include "plugin/plugin.h"
#include "service/placement.h"

#include <QDateTime>
#include <QMessageBox>
#include <QStringList>
#include <QTimer>

#include <functional>
#include <memory>

QT_BEGIN_NAMESPACE
class QListWidget;
class QListWidgetItem;
QT_END_NAMESPACE

namespace Varnel::Internal {
class DownloadService;
class OptionsWidget;
} // namespace Varnel::Internal

namespace Varnel::Test {

using Internal::DownloadService;
using Internal::exampleDirectory;
using Internal::OptionsWidget;
using Internal::Plugin;
using Internal::Repository;

struct Queues
{
    QStringList toInstall; // sorted
    QStringList toRemove;  // sorted
};

/** The IDE's line edits look into its theme; one without colours will do. */
void setUpTheme();

/** The plug-in in an IDE of its own, with settings that the test chooses. One per process. */
class UiFixture final
{
public:
    UiFixture();
    ~UiFixture();
    Q_DISABLE_COPY_MOVE(UiFixture)

    [[nodiscard]] IdeEnvironment &ide() { return m_ide; }
    /** Entries with an address that nothing answers. */
    void setRepositoryNames(const QStringList &names);

    /** Forgets settings, installed examples and the plug-in. */
    void reset();
    /** Starts the plug-in, which reads the settings. */
    void start();
    [[nodiscard]] DownloadService &service() const;

    /** What a repository's server would list. Returns when open pages show it. */
    void list(const QString &repository, const Repository::Examples &examples) const;
    /** The service tells that something has changed. Returns when open pages show what. */
    void update() const;

    /**
     * Applies the page's changes. What was queued is read from the debug lines, which are the only sight of
     * it.
     */
    static QHash<QString, Queues> applyAndReport(OptionsWidget &page);
    /** The same with all listings emptied first, so that nothing is downloaded. The list is redrawn. */
    QHash<QString, Queues> applyOffline(OptionsWidget &page) const;

private:
    IdeEnvironment m_ide;
    std::unique_ptr<Plugin> m_plugin;
};

/** Returns when no open page is looking at the disk any more. */
void waitForScans();

/** A listed project that was active at a time in ISO format. */
[[nodiscard]] Repository::ExamplePtr makeActiveExample(const QString &path, const QString &lastActivity);

/** Puts a manifest where an installed example has it, and returns its path. */
QString install(const QString &repository, const QString &path, const QDateTime &time = {});

[[nodiscard]] QStringList texts(const QListWidget *list);
[[nodiscard]] QStringList visibleTexts(const QListWidget *list);
[[nodiscard]] QListWidgetItem *findRow(const QListWidget *list, const QString &text);
void selectRows(QListWidget *list, const QStringList &texts);

/** The open menu, else the modal window, null if there is neither. */
[[nodiscard]] QWidget *frontWindow();

/** Calls a function as soon as a modal window or menu of the given type is open, once. */
template<class Window>
class WhenOpened final : public QTimer
{
public:
    explicit WhenOpened(const std::function<void(Window *)> &act)
    {
        callOnTimeout(this, [this, act] {
            if (auto window = qobject_cast<Window *>(frontWindow())) {
                stop();
                m_happened = true;
                act(window);
            }
        });
        start(std::chrono::milliseconds(0));
    }

    [[nodiscard]] bool happened() const { return m_happened; }

private:
    bool m_happened = false;
};

/** The message box that is open, null if there is none. */
[[nodiscard]] QMessageBox *messageBox();
void closeMessageBoxes();

} // namespace Varnel::Test
