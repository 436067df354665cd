// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// The command for those who maintain a group: shows what the IDEs will make of it.

#include "checker.h"
#include "htmlreport.h"
#include "installation.h"
#include "interruption.h"
#include "jsonreport.h"
#include "options.h"
#include "progressline.h"
#include "tablereport.h"
#include "visibletext.h"

#include "plugin/constants.h"
#include "service/filesystem.h"
#include "service/filetypes.h"
#include "service/placement.h"

#include <utils/filepath.h>
#include <utils/processreaper.h>
#include <utils/unarchiver.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>

#include <clocale>
#include <csignal>
#include <cstdio>

#include <fcntl.h>
#include <langinfo.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using namespace Varnel;
using namespace Varnel::Check;

namespace {

enum ExitCode { NothingToSay = 0, HasFindings = 1, CouldNotCheck = 2, Interrupted = 130 };

int fail(const QString &message)
{
    std::fprintf(stderr, "%s: %s\n", PROGRAM.data(), qUtf8Printable(visible(message)));
    return CouldNotCheck;
}

// Qt knows no temporary directory that does not exist, and the root directory would take its place.
QString temporaryDirectory()
{
    const QString path = QDir::tempPath();
    return path.isEmpty() ? qEnvironmentVariable("TMPDIR") : path;
}

/** Temporary archives, and examples unless they are installed elsewhere; goes with all that is in it. */
class WorkPlace final
{
public:
    WorkPlace()
        : m_directory(temporaryDirectory() + "/varnel-check-XXXXXX"_L1)
    {
        m_directory.setAutoRemove(false);
        if (isValid() && QDir().mkpath(archives()) && QDir().mkpath(examples()))
            qputenv("TMPDIR", QFile::encodeName(archives()));
    }
    ~WorkPlace()
    {
        if (isValid())
            Internal::removeTree(m_directory.path());
    }
    Q_DISABLE_COPY_MOVE(WorkPlace)

    [[nodiscard]] bool isValid() const { return m_directory.isValid(); }
    [[nodiscard]] QString archives() const { return m_directory.filePath(u"archives"_s); }
    [[nodiscard]] QString examples() const { return m_directory.filePath(u"examples"_s); }

private:
    QTemporaryDir m_directory;
};

ExitCode exitCodeOf(const Report &report, Severity failOn)
{
    if (!report.isComplete)
        return CouldNotCheck;
    const bool hasFindings = report.count(Severity::Error) > 0
                             || (failOn == Severity::Warning && report.count(Severity::Warning) > 0);
    return hasFindings ? HasFindings : NothingToSay;
}

bool isColourWanted()
{
    return ::isatty(STDOUT_FILENO) == 1 && qEnvironmentVariableIsEmpty("NO_COLOR")
           && qgetenv("TERM") != "dumb";
}

bool writeToEnd(const QString &name, const QByteArray &content, const Interruption &interruption)
{
    const int descriptor
        = ::open(QFile::encodeName(name).constData(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    const bool isWritten = descriptor >= 0 && interruption.write(descriptor, content);
    ::close(descriptor);
    return isWritten;
}

// A pipe or a device stays what it is.
bool writeFile(const QString &name, const QByteArray &content, const Interruption &interruption)
{
    if (const QFileInfo info(name); info.exists() && !info.isFile())
        return writeToEnd(name, content, interruption);
    QSaveFile file(name);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size() && file.commit();
}

/** @p exitCode if all could be written. */
int print(const QString &text, int exitCode, const Interruption &interruption)
{
    if (interruption.write(STDOUT_FILENO, text.toUtf8()))
        return exitCode;
    return interruption.hasCome() ? Interrupted : fail(u"the output cannot be written"_s);
}

int publish(const Report &report, const Options &options, const Interruption &interruption)
{
    int exitCode = exitCodeOf(report, options.failOn);
    if (!options.htmlFile.isEmpty()
        && !writeFile(options.htmlFile, htmlReport(report).toUtf8(), interruption))
        exitCode = fail(u"%1 cannot be written"_s.arg(options.htmlFile));
    const QString text
        = options.isJson ? QString::fromUtf8(jsonReport(report, exitCode))
                         : tableReport(report, {.isColoured = isColourWanted(), .isQuiet = options.isQuiet});
    return print(text, exitCode, interruption);
}

/** Runs until the check is over; false if it was interrupted. */
bool run(Checker &checker, bool isQuiet, const Interruption &interruption)
{
    ProgressLine progress(!isQuiet);
    QObject::connect(&interruption, &Interruption::came, qApp, [] { QCoreApplication::exit(Interrupted); });
    QObject::connect(
        &checker, &Checker::progressed, qApp, [&](const Progress &step) { progress.show(step); });
    QObject::connect(&checker, &Checker::finished, qApp, [] { QCoreApplication::exit(); });
    checker.start();
    return QCoreApplication::exec() != Interrupted;
}

int publishInstallation(
    const Installation &installation, const Options &options, const Interruption &interruption)
{
    if (!options.settingsFile.isEmpty()) {
        return installation.writeSettings(options.settingsFile)
                   ? NothingToSay
                   : fail(u"%1 cannot be written"_s.arg(options.settingsFile));
    }
    // JSON is for programs: they ask for a file.
    if (options.isJson || options.isQuiet)
        return NothingToSay;
    const QString text
        = u"\nSettings that go with %1:\n\n%2"_s.arg(installation.directory(), installation.settingsText());
    return print(text, NothingToSay, interruption);
}

// Without one each example would fail, and its maintainer could not mend it.
bool hasUnarchiver(const QString &directory)
{
    const QString archive = directory + u"/any"_s + QLatin1StringView(Constants::ARCHIVE_EXTENSION);
    return Utils::Unarchiver::sourceAndCommand(Utils::FilePath::fromString(archive)).has_value();
}

int check(const Options &options, const Interruption &interruption)
{
    const WorkPlace place;
    if (!place.isValid())
        return fail(u"no directory can be made in %1"_s.arg(temporaryDirectory()));
    if (!hasUnarchiver(place.archives()))
        return fail(u"this machine has no program that unpacks archives: install cmake or tar"_s);
    std::optional<Installation> installation;
    if (!options.installDirectory.isEmpty()) {
        installation.emplace(options.installDirectory, options.name, options.url);
        if (const QString fault = installation->open(options.isForced); !fault.isEmpty())
            return fail(fault);
    }
    Internal::setRepositoryDirectory(installation ? installation->directory() : place.examples());

    Checker checker(
        {.url = options.url,
         .name = options.name,
         .only = options.only,
         .jobs = options.jobs,
         .timeout = options.timeout,
         .keepsExamples = installation.has_value()});
    QStringList paths;
    QObject::connect(&checker, &Checker::listed, qApp, [&](const QStringList &listed) {
        paths = listed;
        if (installation)
            installation->removeLeftOvers(paths);
    });
    const bool isOver = run(checker, options.isQuiet, interruption);
    checker.stop();
    Utils::ProcessReaper::deleteAll(); // an unarchiver that is being ended writes until it has
    if (installation)
        installation->removeRemains(paths, checker.topNames());
    if (!isOver)
        return Interrupted;
    const int exitCode = publish(checker.report(), options, interruption);
    if (!installation || !checker.report().isComplete || exitCode == Interrupted)
        return exitCode;
    return std::max(exitCode, publishInstallation(*installation, options, interruption));
}

// What Qt's libraries have to say of a hostile answer is said by a finding, and better. Who wants to know
// more sets logging rules.
void silenceLibraries()
{
    if (!qEnvironmentVariableIsSet("QT_LOGGING_RULES"))
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
}

// What is opened next would take the place of a descriptor that is closed, and get what is meant for it.
void fillStandardDescriptors()
{
    while (true) {
        const int descriptor = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        if (descriptor > STDERR_FILENO)
            ::close(descriptor);
        if (descriptor < 0 || descriptor > STDERR_FILENO)
            return;
    }
}

// Containers often have no locale. Qt would complain, and then do the same.
void useUtf8()
{
    std::setlocale(LC_CTYPE, "");
    if (qstrcmp(::nl_langinfo(CODESET), "UTF-8") != 0)
        qputenv("LC_ALL", "C.UTF-8");
}

} // namespace

int main(int argc, char *argv[])
{
    fillStandardDescriptors();
    std::signal(SIGPIPE, SIG_IGN); // who reads no more must not keep the temporary files from going
    useUtf8();
    silenceLibraries();
    QCoreApplication application(argc, argv);
    const Interruption interruption;
    const CommandLine commandLine = parse(QCoreApplication::arguments());
    if (!commandLine.error.isEmpty())
        return fail(commandLine.error + u"; %1 --help says more"_s.arg(PROGRAM));
    if (!commandLine.options)
        return print(commandLine.output, NothingToSay, interruption);
    Internal::learnFileTypes();
    return check(*commandLine.options, interruption);
}
