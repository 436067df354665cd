// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// What git packs installs as the tree that the unarchiver makes of git's own archive, by either tool, in any
// locale.

#include "tree.h"
#include "world.h"

#include "common/testfiles.h"
#include "plugin/constants.h"

#include <utils/environment.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

using namespace Varnel;
using namespace Varnel::Test;

namespace {

const QString TOP = "subject-main-0123456789abcdef0123456789abcdef01234567";
constexpr qint64 NOW = 0;
constexpr qint64 YEAR_1970 = 1;             // git takes a zero for no date
constexpr qint64 YEAR_2100 = 4'102'444'800; // seconds since 1970

struct Variant
{
    QString name;
    qint64 commitTime = NOW;
    QStringList initOptions = {};
};

const QList<Variant> &variants()
{
    static const QList<Variant> ALL{
        {.name = "now"},
        {.name = "1970", .commitTime = YEAR_1970},
        {.name = "2100", .commitTime = YEAR_2100},
        {.name = "SHA-256", .initOptions = {"--object-format=sha256"}},
    };
    return ALL;
}

QString work(const QString &name)
{
    return World::path("cache/" + name);
}

QString archiveOf(const QString &variant)
{
    return work(variant + ".tar.gz");
}

/** Runs a command to its end in a directory, with additions to the environment; true if it succeeded. */
bool run(
    const QString &directory,
    const QString &program,
    const QStringList &arguments,
    const QMap<QString, QString> &environment)
{
    QProcess process;
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (auto it = environment.cbegin(); it != environment.cend(); ++it)
        variables.insert(it.key(), it.value());
    process.setProcessEnvironment(variables);
    process.setWorkingDirectory(directory);
    process.start(program, arguments);
    const bool isDone = process.waitForFinished() && process.exitStatus() == QProcess::NormalExit
                        && process.exitCode() == 0;
    if (!isDone)
        qWarning() << program << arguments << process.readAllStandardError();
    return isDone;
}

void writeExecutable(const QString &path)
{
    writeFile(path, "#!/bin/sh\nexit 0\n");
    QFile(path).setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

// Names that are not UTF-8 cannot be told to Qt.
void writeRaw(const QByteArray &path, const QByteArray &content)
{
    std::FILE *file = std::fopen(path, "wb");
    if (!file || std::fwrite(content, 1, size_t(content.size()), file) != size_t(content.size())
        || std::fclose(file) != 0)
        qFatal("cannot write %s", path.constData());
}

void writeAwkwardProject(const QString &directory)
{
    const QString letters = QString::fromUtf8("äöü-日本語-Ж-").repeated(6);
    writeFile(directory + "/CMakeLists.txt", "project(awkward)\n");
    writeFile(directory + "/src/main.cpp", "int main() {}\n");
    writeFile(directory + "/empty", {});
    writeFile(directory + "/block", QByteArray(512, 'b'));
    writeFile(directory + "/large.bin", QByteArray("0123456789abcde\n").repeated(200'000));
    writeFile(directory + "/" + QString(250, 'n'), "long name");
    writeFile(directory + "/" + (QString(99, 'd') + '/').repeated(5) + "deep", "long path");
    writeFile(directory + "/" + letters, "letters");
    writeFile(directory + "/in " + letters + "/x/" + letters + "/y", "letters in directories");
    writeFile(directory + "/-rf", "an option");
    writeFile(directory + "/a\nb\tc", "white space");
    writeFile(directory + "/.hidden/.file", "hidden");
    writeRaw(QFile::encodeName(directory) + "/latin-\xe9", "Latin-1");
    writeExecutable(directory + "/tool.sh");
    makeLink(directory + "/link", "src/main.cpp");
    makeLink(directory + "/link to directory", "src");
    makeLink(directory + "/link out", "../../outside");
    makeLink(directory + "/link absolute", "/nowhere/at/all");
    makeLink(directory + "/link to letters", letters);
    makeLink(directory + "/link dangling", "nowhere");
    makeLink(directory + "/link long", QString("0123456789/").repeated(20));
}

bool makeArchive(const Variant &variant)
{
    const QString directory = work(variant.name);
    writeAwkwardProject(directory);
    QMap<QString, QString> environment{{"GIT_CONFIG_NOSYSTEM", "1"}};
    const qint64 time = variant.commitTime == NOW ? QDateTime::currentSecsSinceEpoch() : variant.commitTime;
    for (const QString &who : QStringList{"AUTHOR", "COMMITTER"}) {
        environment.insert("GIT_" + who + "_NAME", "Somebody");
        environment.insert("GIT_" + who + "_EMAIL", "somebody@example.org");
        environment.insert("GIT_" + who + "_DATE", QString("@%1 +0000").arg(time));
    }
    const auto git
        = [&](const QStringList &arguments) { return run(directory, "git", arguments, environment); };
    const QString submodule = QString(variant.initOptions.isEmpty() ? 40 : 64, '1');
    return git(QStringList{"init", "--quiet"} + variant.initOptions) && git({"add", "."})
           && git({"update-index", "--add", "--cacheinfo", "160000," + submodule + ",sub/module"})
           && git({"commit", "--quiet", "-m", "First"})
           && git(
               {"archive",
                "--format=tar.gz",
                "--prefix=" + TOP + '/',
                "-o",
                archiveOf(variant.name),
                "HEAD"});
}

// As small as a locale can be: the system need not have any of this encoding.
bool makeLatin1Locale()
{
    QByteArray letters = "<code_set_name> ISO-8859-1\n<comment_char> %\n<escape_char> /\n<mb_cur_min> 1\n"
                         "<mb_cur_max> 1\nCHARMAP\n";
    for (int i = 0; i < 256; ++i) {
        const QByteArray byte = QByteArray::number(i, 16).rightJustified(2, '0');
        letters += "<U00" + byte.toUpper() + "> /x" + byte + " letter\n";
    }
    writeFile(work("locales/letters"), letters + "END CHARMAP\n");
    writeFile(
        work("locales/rules"),
        "comment_char %\nescape_char /\nLC_CTYPE\n"
        "upper <U0041>..<U005A>\nlower <U0061>..<U007A>\nspace <U0009>..<U000D>;<U0020>\n"
        "cntrl <U0000>..<U001F>;<U007F>..<U009F>\ndigit <U0030>..<U0039>\n"
        "xdigit <U0030>..<U0039>;<U0041>..<U0046>;<U0061>..<U0066>\n"
        "punct <U0021>..<U002F>;<U003A>..<U0040>;<U005B>..<U0060>;<U007B>..<U007E>;<U00A0>..<U00FF>\n"
        "END LC_CTYPE\n");
    QProcess process; // complains of the categories that are missing, and of some letters
    process.setWorkingDirectory(work("locales"));
    process.start("localedef", {"-c", "--no-archive", "-i", "./rules", "-f", "./letters", "./latin1"});
    return process.waitForFinished() && QFile::exists(work("locales/latin1/LC_CTYPE"));
}

QMap<QString, QString> localeVariables(const QString &locale)
{
    return {
        {"LANG", "C"},
        {"LC_ALL", locale == "Latin-1" ? QString() : locale},
        {"LC_CTYPE", locale == "Latin-1" ? "latin1" : QString()},
        {"LOCPATH", work("locales")}};
}

// A search path with nothing but this tool, and with what it calls.
QString searchPath(const QString &tool)
{
    const QString directory = work("tools-" + tool);
    const QStringList programs = tool == "tar" ? QStringList{"tar", "gzip"} : QStringList{"cmake"};
    for (const QString &program : programs) {
        if (!QFile::exists(directory + '/' + program))
            makeLink(directory + '/' + program, "/usr/bin/" + program);
    }
    return directory;
}

QStringList commandLine(const QString &tool, const QString &archive)
{
    return tool == "tar" ? QStringList{"tar", "xzf", archive}
                         : QStringList{"cmake", "-E", "tar", "xzf", archive};
}

bool unpack(const QString &tool, const QString &archive, const QString &directory, const QString &locale)
{
    makeDirectory(directory);
    const QStringList command = commandLine(tool, archive);
    return run(directory, command.first(), command.sliced(1), localeVariables(locale));
}

/** What the IDE's libraries take for the environment, as long as it lives. */
class ToolEnvironment final
{
public:
    ToolEnvironment(const QString &tool, const QString &locale)
    {
        QMap<QString, QString> variables = localeVariables(locale);
        variables.insert("PATH", searchPath(tool));
        Utils::EnvironmentItems items;
        for (auto it = variables.cbegin(); it != variables.cend(); ++it)
            items.append({it.key(), it.value()});
        Utils::Environment::modifySystemEnvironment(items);
    }
    ~ToolEnvironment() { Utils::Environment::setSystemEnvironment(m_previous); }
    Q_DISABLE_COPY_MOVE(ToolEnvironment)

private:
    const Utils::Environment m_previous = Utils::Environment::systemEnvironment();
};

} // namespace

class tst_Honest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void toolsStopAtNamesOfOtherEncodings();
    void whatGitPacksInstallsAsTheSameTree_data();
    void whatGitPacksInstallsAsTheSameTree();
};

void tst_Honest::initTestCase()
{
    World::prepareProcess();
    for (const Variant &variant : variants())
        QVERIFY(makeArchive(variant));
    QVERIFY(makeLatin1Locale());
}

// Else the locales of the rows below would prove nothing.
void tst_Honest::toolsStopAtNamesOfOtherEncodings()
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("can't be converted from UTF-8"));
    QVERIFY(!unpack("cmake", archiveOf("now"), work("stopped/C"), "C"));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("can't be converted from UTF-8"));
    QVERIFY(!unpack("cmake", archiveOf("now"), work("stopped/Latin-1"), "Latin-1"));
}

void tst_Honest::whatGitPacksInstallsAsTheSameTree_data()
{
    QTest::addColumn<QString>("variant");
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QString>("locale");
    for (const Variant &variant : variants()) {
        for (const QString &tool : QStringList{"cmake", "tar"}) {
            for (const QString &locale : QStringList{"C", "C.UTF-8", "Latin-1"}) {
                QTest::addRow("%s, %s, %s", qPrintable(variant.name), qPrintable(tool), qPrintable(locale))
                    << variant.name << tool << locale;
            }
        }
    }
}

void tst_Honest::whatGitPacksInstallsAsTheSameTree()
{
    QFETCH(QString, variant);
    QFETCH(QString, tool);
    QFETCH(QString, locale);
    const QString reference = work("reference/" + variant + '-' + tool);
    if (!QFile::exists(reference))
        QVERIFY(unpack(tool, archiveOf(variant), reference, "C.UTF-8"));
    const ToolEnvironment environment(tool, locale);
    World world;
    world.subject().archive = readFile(archiveOf(variant));

    world.start();

    const bool isInstalled = World::waitFor([&] { return World::isInstalled("subject") && world.isIdle(); });
    QVERIFY2(isInstalled, qPrintable(world.log().join('\n')));
    Tree installed = readTree(World::exampleDirectory("subject"));
    QCOMPARE(installed.remove(Constants::MANIFEST_FILE), 1);
    const Tree unpacked = readTree(reference + '/' + TOP);
    QCOMPARE_GT(unpacked.size(), 30);
    QCOMPARE(differences(unpacked, installed), QStringList());
}

QTEST_MAIN(tst_Honest)

#include "tst_honest.moc"
