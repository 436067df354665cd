// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Start-up of the plug-in and the holder of its service.

#include "plugin/plugin.h"

#include "plugin/constants.h"
#include "service/downloadservice.h"
#include "settings/settings.h"

#include "common/ideenvironment.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"

#include <coreplugin/dialogs/ioptionspage.h>
#include <coreplugin/helpmanager.h>
#include <coreplugin/icore.h>
#include <utils/qtcsettings.h>

#include <tolmak/sdk.h>

#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QPluginLoader>
#include <QPointer>
#include <QProcess>
#include <QSignalSpy>
#include <QSslSocket>
#include <QTest>
#include <QTranslator>
#include <QXmlStreamReader>

using namespace Varnel;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

// Looked at before main().
const bool hadServiceAtLoad = Plugin::downloadService() != nullptr;

Core::IOptionsPage *page()
{
    for (Core::IOptionsPage *page : Core::IOptionsPage::allOptionsPages()) {
        if (page->id() == Utils::Id(Constants::OPTIONS_PAGE_ID))
            return page;
    }
    return nullptr;
}

bool isAnotherTlsLibrary()
{
    return QSslSocket::sslLibraryBuildVersionNumber() != QSslSocket::sslLibraryVersionNumber();
}

/** Notes the steps of a start-up by what is logged, and whether the page is there by then. One at a time. */
class StartRecorder final
{
public:
    StartRecorder()
    {
        QLoggingCategory::setFilterRules("default.debug=true\nzel.varnel.plugin.debug=true");
        s_steps.clear();
        m_previous = qInstallMessageHandler(&StartRecorder::note);
    }
    ~StartRecorder()
    {
        qInstallMessageHandler(m_previous);
        QLoggingCategory::setFilterRules({});
    }
    Q_DISABLE_COPY_MOVE(StartRecorder)

    [[nodiscard]] QStringList steps() const { return s_steps; }

private:
    static void note(QtMsgType, const QMessageLogContext &, const QString &text)
    {
        static const QList<std::pair<QString, QString>> NAMES{
            {"SSL versions mismatch!", "TLS"},
            {"Failed to load translator:", "translator"},
            {"Settings:", "settings"}};
        for (const auto &[beginning, name] : NAMES) {
            if (text.startsWith(beginning))
                s_steps.append(page() ? name + ", with a page" : name);
        }
    }

    static inline QStringList s_steps;
    QtMessageHandler m_previous = nullptr;
};

} // namespace

class tst_Plugin final : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void beforeStartUpThereIsNoService();
    void startingUpNeverFails();
    void theServiceOutlivesThePluginObject();
    void aSecondStartReplacesTheService();
    void entriesAreRefreshedBeforeTheServiceComes();
    void thePageIsRegisteredUnderTheSystemsName();
    void thePageGoesWithThePluginObject();
    void thePageComesBeforeTheService();
    void theStepsAreLoggedInTheirOrder();
    void aMissingTranslationIsOnlyLogged();
    void anotherTlsLibraryIsOnlyLogged();
    void theTemplateIsInTheResources();
    void theMetadataIsWhatTheIdeReads();
    void thereIsOneInstanceAtATime();
    void theLocationIsFixedWhileTheLibraryLoads();

private:
    [[nodiscard]] static bool start(Plugin &plugin);

    std::unique_ptr<IdeEnvironment> m_ide;
};

void tst_Plugin::initTestCase()
{
    m_ide = std::make_unique<IdeEnvironment>();
}

void tst_Plugin::init()
{
    m_ide->set(Constants::REPOSITORIES, QStringList{"Demo|http://127.0.0.1|"});
}

void tst_Plugin::cleanup()
{
    m_ide->reset();
}

void tst_Plugin::cleanupTestCase()
{
    quitApplication();
}

bool tst_Plugin::start(Plugin &plugin)
{
    QString error;
    return plugin.initialize({}, &error) && error.isEmpty();
}

void tst_Plugin::beforeStartUpThereIsNoService()
{
    QVERIFY(!hadServiceAtLoad);
    QVERIFY(!Plugin::downloadService());
    const Plugin plugin;
    QVERIFY(!Plugin::downloadService());
}

void tst_Plugin::startingUpNeverFails()
{
    Plugin plugin;
    QString error = "untouched";

    QVERIFY(plugin.initialize({"-argument"}, &error));
    plugin.extensionsInitialized();

    QCOMPARE(error, "untouched");
    QVERIFY(Plugin::downloadService());
}

void tst_Plugin::theServiceOutlivesThePluginObject()
{
    auto plugin = std::make_unique<Plugin>();
    QVERIFY(start(*plugin));
    DownloadService *service = Plugin::downloadService();
    const QSignalSpy destroyed(service, &QObject::destroyed);

    plugin.reset();

    QCOMPARE(Plugin::downloadService(), service);
    QCOMPARE(destroyed.size(), 0);
    QVERIFY(service->findRepository("Demo"));
    QVERIFY(!service->parent());
}

void tst_Plugin::aSecondStartReplacesTheService()
{
    {
        Plugin first;
        QVERIFY(start(first));
    }
    const QSignalSpy destroyed(Plugin::downloadService(), &QObject::destroyed);

    Plugin second;
    QVERIFY(start(second));

    QCOMPARE(destroyed.size(), 1);
    QVERIFY(Plugin::downloadService());
}

void tst_Plugin::entriesAreRefreshedBeforeTheServiceComes()
{
    m_ide->settings()->setValue(Constants::INSTALLED_EXAMPLES, QStringList{"Demo|/x|/x"});
    QStringList order;
    const LogRecorder log("default.debug=true\nzel.varnel.plugin*.debug=true");
    const auto connection = connect(
        Core::HelpManager::Signals::instance(), &Core::HelpManager::Signals::setupFinished, this, [&] {
            // Of the records one is loaded by now; the service's own comes later.
            order.append(QString("%1 loaded").arg(log.lines("default").size()));
            order.append(QString(page() ? u"page" : u"no page"));
        });
    Plugin plugin;

    QVERIFY(start(plugin));

    disconnect(connection);
    QCOMPARE(order, (QStringList{"1 loaded", "no page"}));
    QCOMPARE(log.lines("default").size(), 2);
    const QString directory = Settings::location().arg("Demo");
    QCOMPARE(
        m_ide->stored(Constants::INSTALLED_EXAMPLES).toStringList(),
        QStringList{"Demo|" + directory + '|' + directory});
}

void tst_Plugin::thePageIsRegisteredUnderTheSystemsName()
{
    Plugin plugin;
    QVERIFY(!page());

    QVERIFY(start(plugin));

    QVERIFY(page());
    QCOMPARE(page()->displayName(), Tolmak::Sdk::osVariant() + " Examples");
}

void tst_Plugin::thePageGoesWithThePluginObject()
{
    {
        Plugin plugin;
        QVERIFY(start(plugin));
        QVERIFY(page());
    }

    QVERIFY(!page());
}

void tst_Plugin::thePageComesBeforeTheService()
{
    Plugin plugin;
    const StartRecorder recorder;

    QVERIFY(start(plugin));

    // The entries' own record, and then the service's.
    QCOMPARE(recorder.steps().filter("settings"), (QStringList{"settings", "settings, with a page"}));
}

void tst_Plugin::theStepsAreLoggedInTheirOrder()
{
    Plugin plugin;
    const StartRecorder recorder;

    QVERIFY(start(plugin));

    QStringList steps{"translator", "settings", "settings, with a page"};
    if (isAnotherTlsLibrary())
        steps.prepend("TLS");
    QCOMPARE(recorder.steps(), steps);
}

void tst_Plugin::aMissingTranslationIsOnlyLogged()
{
    m_ide->settings()->setValue(Constants::OVERRIDE_LANGUAGE, "eo");
    const LogRecorder log;
    Plugin plugin;

    QVERIFY(start(plugin));

    // It is a child whether it is loaded or not.
    const QTranslator *translator = plugin.findChild<QTranslator *>();
    QVERIFY(translator);
    QVERIFY(translator->isEmpty());
    const QString directory = Core::ICore::resourcePath("translations").toFSPathString();
    QVERIFY(
        log.lines(LogRecorder::MAIN).contains("Failed to load translator: \"" + directory + "\" \"Varnel\""));
}

void tst_Plugin::anotherTlsLibraryIsOnlyLogged()
{
    const LogRecorder log;
    Plugin plugin;

    QVERIFY(start(plugin));

    QString text;
    QDebug(&text) << "SSL versions mismatch!\nCompiled version:\t"
                  << QSslSocket::sslLibraryBuildVersionString() << "\nSystem version:\t"
                  << QSslSocket::sslLibraryVersionString();
    QCOMPARE(log.lines(LogRecorder::MAIN).contains(text.trimmed()), isAnotherTlsLibrary());
    QCOMPARE(log.lines(LogRecorder::MAIN).filter("SSL").size(), isAnotherTlsLibrary() ? 1 : 0);
}

void tst_Plugin::theTemplateIsInTheResources()
{
    QXmlStreamReader reader(readFile(":/examples-manifest.xml"));
    QStringList elements;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement)
            elements.append(reader.name().toString());
    }
    QVERIFY2(!reader.hasError(), qPrintable(reader.errorString()));
    QCOMPARE(
        elements,
        (QStringList{
            "instructionals",
            "examples",
            "example",
            "description",
            "tags",
            "platforms",
            "preferredFeatures",
            "fileToOpen"}));
    QCOMPARE(QDir(":/").entryList({"*.xml"}, QDir::Files), QStringList{"examples-manifest.xml"});
}

void tst_Plugin::theMetadataIsWhatTheIdeReads()
{
    const QJsonObject record = QPluginLoader(PLUGIN_MODULE).metaData();

    QCOMPARE(record.value("IID").toString(), "org.qt-project.Qt.QtCreatorPlugin");
    QCOMPARE(record.value("className").toString(), "Plugin");
    const QJsonObject data = record.value("MetaData").toObject();
    QCOMPARE(
        data.keys(),
        (QStringList{
            "CompatVersion",
            "Copyright",
            "Dependencies",
            "Description",
            "Id",
            "License",
            "Name",
            "Vendor",
            "VendorId",
            "Version"}));
    QCOMPARE(data.value("Id").toString(), "varnel");
    QCOMPARE(data.value("Name").toString(), "Varnel");
    QCOMPARE(data.value("Version").toString(), "16.0.0");
    QCOMPARE(data.value("CompatVersion").toString(), "16.0.0");
    QVERIFY(data.value("Description").toString().contains("Ferrona OS"));
    QVERIFY(!data.value("Description").toString().contains('\n'));
    QCOMPARE(
        data.value("Dependencies").toArray(),
        (QJsonArray{
            QJsonObject{{"Id", "core"}, {"Version", "16.0.0"}},
            QJsonObject{{"Id", "help"}, {"Version", "16.0.0"}},
            QJsonObject{{"Id", "ferronaos"}, {"Version", "16.0.0"}}}));
}

void tst_Plugin::thereIsOneInstanceAtATime()
{
    QPluginLoader loader(PLUGIN_MODULE);

    const QPointer<QObject> first = loader.instance();

    QVERIFY2(first, qPrintable(loader.errorString()));
    QCOMPARE(first->metaObject()->className(), "Varnel::Internal::Plugin");
    QCOMPARE(loader.instance(), first);
    delete first;
    const std::unique_ptr<QObject> second(loader.instance());
    QVERIFY(second);
}

void tst_Plugin::theLocationIsFixedWhileTheLibraryLoads()
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_LOGGING_RULES", "zel.varnel.plugin.debug=true");
    environment.insert("XDG_DATA_HOME", "/tmp/of-another-process");
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);

    process.start(QCoreApplication::applicationFilePath(), {"-functions"}); // no test of it runs

    QVERIFY(process.waitForFinished());
    const QString output = QString::fromUtf8(process.readAll());
    const QString location
        = "Data location \"/tmp/of-another-process/" + Tolmak::Sdk::releaseInfo().name + "/%1\"";
    QVERIFY2(output.contains(location), qPrintable(output));
    QCOMPARE(output.count("Data location"), 1);
}

QTEST_MAIN(tst_Plugin)
#include "tst_plugin.moc"
