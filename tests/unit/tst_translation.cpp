// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Each language: that nothing stays untranslated or in the wrong context, and that every text has its room.

#include "client/apiclient.h"
#include "common/clientrecorder.h"
#include "common/servicefixture.h"
#include "common/testfiles.h"
#include "common/uifixture.h"
#include "plugin/constants.h"
#include "server/demoserver.h"
#include "service/downloadservice.h"
#include "ui/examplesdialog.h"
#include "ui/optionswidget.h"

#include <coreplugin/dialogs/ioptionspage.h>

#include <tolmak/sdk.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QTest>
#include <QTranslator>

using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

class tst_Translation final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void eachLanguageOfTheIdeIsFound_data();
    void eachLanguageOfTheIdeIsFound();
    void everyTextOfTheFormsIsTranslated();
    void textsThatTheCodeSetsAreTranslated();
    void menuIsTranslated();
    void textsFitTheirPlaces_data();
    void textsFitTheirPlaces();
    void thePagesNameIsTranslated();
    void statusesOfTheClientAreTextsOfQObject();
    void statusesAreTranslatedInTheirContexts();
    void theTextFixedAtLoadStaysEnglish();

private:
    void switchTo(const QString &language);
    void switchToGerman() { switchTo("de_DE"); }

    UiFixture m_fixture;
    QTranslator m_translator;
};

namespace {

/**
 * Every text that a user may read or hear, by the name of its widget. Parts of Qt's and the IDE's have none.
 */
QMap<QString, QString> allTexts(const QWidget &top)
{
    QMap<QString, QString> result;
    QList<const QWidget *> widgets{&top};
    for (const QWidget *widget : top.findChildren<QWidget *>())
        widgets.append(widget);
    for (const QWidget *widget : std::as_const(widgets)) {
        for (const char *property : {"windowTitle", "title", "text", "toolTip", "accessibleName"}) {
            const QString text = widget->property(property).toString();
            if (!text.isEmpty() && !widget->objectName().isEmpty() && !widget->objectName().startsWith("qt_"))
                result.insert(widget->objectName() + '.' + QLatin1StringView(property), text);
        }
    }
    return result;
}

// The same in both languages; the number is the spin box's.
bool mayStay(const QString &text)
{
    return text == "Repository:" || text == "0";
}

/** Translates nothing, but notes which texts it was asked for. Workers ask, too. */
class AskedTexts final : public QTranslator
{
public:
    AskedTexts() { QCoreApplication::installTranslator(this); }
    ~AskedTexts() override { QCoreApplication::removeTranslator(this); }
    Q_DISABLE_COPY_MOVE(AskedTexts)

    [[nodiscard]] bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *text, const char *, int) const override
    {
        const QMutexLocker locker(&m_lock);
        m_texts[QString::fromUtf8(context)].insert(QString::fromUtf8(text));
        return {};
    }

    /** By context. Those of Qt and of the IDE are there as well. */
    [[nodiscard]] QMap<QString, QSet<QString>> texts() const
    {
        const QMutexLocker locker(&m_lock);
        return m_texts;
    }

private:
    mutable QMutex m_lock;
    mutable QMap<QString, QSet<QString>> m_texts;
};

QStringList sorted(const QSet<QString> &set)
{
    QStringList list(set.cbegin(), set.cend());
    list.sort();
    return list;
}

/** Lets a client search, and list if the group is found, until it says @p last. */
void talk(const DemoServer &server, const QString &last)
{
    ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);
    QObject::connect(&client, &ApiClient::ready, &client, &ApiClient::fetch);
    QTRY_VERIFY2(recorder.lines().contains(last), qPrintable(recorder.lines().join('\n')));
}

/** Lets a client download an example whose picture is not there. */
void downloadWithoutPicture(DemoServer &server)
{
    server.answer("/api/v4/projects/*", 200, "archive");
    ApiClient client(server.groupUrl(), nullptr);
    const ClientRecorder recorder(client);
    const Repository::ExamplePtr example = makeExample("maps");
    client.fetch(); // too early
    client.download(Repository::Examples{example});
    QTRY_COMPARE(recorder.count("Unable to download image: "), 1);
    QCOMPARE(example->tags().size(), 2);
    example->setImage(encodedPicture({8, 8}));
}

/** Letters that no installed font has are drawn, and measured, as boxes. */
QString lettersWithoutGlyph(const QWidget &widget)
{
    QString result;
    const QByteArray property = qobject_cast<const QGroupBox *>(&widget) ? "title" : "text";
    for (const QChar letter : widget.property(property).toString()) {
        if (!widget.fontMetrics().inFont(letter))
            result.append(letter);
    }
    return result;
}

int neededWidth(const QWidget &widget)
{
    if (auto box = qobject_cast<const QGroupBox *>(&widget))
        return box->fontMetrics().horizontalAdvance(box->title()) + 2 * box->fontMetrics().averageCharWidth();
    return widget.sizeHint().width();
}

} // namespace

void tst_Translation::init()
{
    m_fixture.reset();
    m_fixture.setRepositoryNames({"Demo"});
    m_fixture.start();
    install("Demo", "maps");
    m_fixture.list("Demo", {makeActiveExample("maps", "2123-05-04T10:00:00.000Z")});
}

void tst_Translation::cleanup()
{
    QCoreApplication::removeTranslator(&m_translator);
}

void tst_Translation::switchTo(const QString &language)
{
    QVERIFY(m_translator.load(QLocale(language), "Varnel", "_", VARNEL_TRANSLATIONS));
    QCoreApplication::installTranslator(&m_translator);
}

void tst_Translation::eachLanguageOfTheIdeIsFound_data()
{
    QTest::addColumn<QString>("remove");
    // The language's name is what the IDE has in its settings.
    QTest::newRow("cs") << "Odstranit";
    QTest::newRow("da") << "Fjern";
    QTest::newRow("de") << "Entfernen";
    QTest::newRow("fr") << "Supprimer";
    QTest::newRow("hr") << "Ukloni";
    QTest::newRow("ja") << "削除";
    QTest::newRow("pl") << "Usuń";
    QTest::newRow("ru") << "Удалить";
    QTest::newRow("sl") << "Odstrani";
    QTest::newRow("uk") << "Видалити";
    QTest::newRow("zh_CN") << "删除";
    QTest::newRow("zh_TW") << "移除";
}

void tst_Translation::eachLanguageOfTheIdeIsFound()
{
    QFETCH(QString, remove);

    switchTo(QString::fromLatin1(QTest::currentDataTag()));

    QCOMPARE(OptionsWidget().findChild<QAbstractButton *>("removeButton")->text(), remove);
}

void tst_Translation::everyTextOfTheFormsIsTranslated()
{
    const auto readAll
        = [] { return std::pair(allTexts(OptionsWidget()), allTexts(ExamplesDialog({}, nullptr))); };
    const auto [englishPage, englishDialog] = readAll();
    switchToGerman();

    const auto [germanPage, germanDialog] = readAll();

    QVERIFY(englishPage.size() > 10);
    QVERIFY(englishDialog.size() > 3);
    QCOMPARE(germanPage.keys(), englishPage.keys());
    QCOMPARE(germanDialog.keys(), englishDialog.keys());
    for (auto it = englishPage.begin(); it != englishPage.end(); ++it)
        QVERIFY2(germanPage[it.key()] != it.value() || mayStay(it.value()), qPrintable(it.key()));
    for (auto it = englishDialog.begin(); it != englishDialog.end(); ++it)
        QVERIFY2(germanDialog[it.key()] != it.value() || mayStay(it.value()), qPrintable(it.key()));
}

void tst_Translation::textsThatTheCodeSetsAreTranslated()
{
    switchToGerman();

    OptionsWidget page;
    waitForScans();
    const ExamplesDialog dialog(makeExamples({"maps"}), nullptr);

    const QString row = page.findChild<QListWidget *>("examplesListWidget")->item(0)->toolTip();
    QVERIFY2(row.contains("Aktualisierung verfügbar"), qPrintable(row));
    QVERIFY2(row.contains("Ort:&nbsp;"), qPrintable(row));
    const QString repository
        = page.findChild<QComboBox *>("repositoryComboBox")->itemData(0, Qt::ToolTipRole).toString();
    QVERIFY2(repository.contains("Verzeichnis:&nbsp;"), qPrintable(repository));
    const QString online = dialog.findChild<QListWidget *>("examplesListWidget")->item(0)->toolTip();
    QVERIFY2(online.contains("Beschreibung:&nbsp;"), qPrintable(online));
}

void tst_Translation::menuIsTranslated()
{
    switchToGerman();
    QListWidget list;
    list.addItem("maps");
    Plugin::initMenu(&list, [](const QString &) { return QUrl(); });
    list.show();
    QString text;
    WhenOpened<QMenu> menu([&text](QMenu *opened) {
        text = opened->actions().constFirst()->text();
        opened->close();
    });

    emit list.customContextMenuRequested(list.visualItemRect(list.item(0)).center());

    QCOMPARE(text, "Ort öffnen...");
}

void tst_Translation::textsFitTheirPlaces_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("en") << QString();
    for (const char *language :
         {"cs", "da", "de", "fr", "hr", "ja", "pl", "ru", "sl", "uk", "zh_CN", "zh_TW"})
        QTest::newRow(language) << QString::fromLatin1(language);
}

void tst_Translation::textsFitTheirPlaces()
{
    QFETCH(QString, language);
    if (!language.isEmpty())
        switchTo(language);
    OptionsWidget page;
    ExamplesDialog dialog({}, nullptr);
    page.show();
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));

    QCOMPARE(page.size(), QSize(538, 400));
    QCOMPARE(dialog.size(), QSize(640, 480));
    int checked = 0;
    const QList<QWidget *> widgets = page.findChildren<QWidget *>() + dialog.findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        const bool isText = qobject_cast<const QLabel *>(widget) || qobject_cast<const QGroupBox *>(widget)
                            || (qobject_cast<const QAbstractButton *>(widget)
                                && !qobject_cast<const QLineEdit *>(widget->parentWidget()));
        if (!isText || !widget->isVisible())
            continue;
        QVERIFY2(
            widget->width() >= neededWidth(*widget) && widget->height() >= widget->fontMetrics().height(),
            qPrintable(widget->objectName()));
        QCOMPARE(lettersWithoutGlyph(*widget), QString());
        ++checked;
    }
    QCOMPARE(checked, 9); // 3 labels, 2 boxes, 2 + 2 buttons
}

void tst_Translation::thePagesNameIsTranslated()
{
    switchToGerman();

    m_fixture.start();

    QStringList names;
    for (const Core::IOptionsPage *page : Core::IOptionsPage::allOptionsPages()) {
        if (page->id() == Utils::Id(Varnel::Constants::OPTIONS_PAGE_ID))
            names.append(page->displayName());
    }
    QCOMPARE(names, QStringList{Tolmak::Sdk::osVariant() + " Beispiele"});
}

void tst_Translation::statusesOfTheClientAreTextsOfQObject()
{
    DemoServer server;
    const QString search = "/api/v4/groups";
    const QString listing = "/api/v4/groups/*";
    const AskedTexts asked;

    talk(server, "fetched 0");
    downloadWithoutPicture(server);
    server.answer(listing, 200, "{}");
    talk(server, "Fetch error: request return wrong data - no projects field");
    server.answer(listing, 200, "null");
    talk(server, "Fetch error: request return null object");
    server.answer(search, 200, "{}");
    talk(server, "Search error: request return wrong data - no id field");
    server.answer(search, 200, "null");
    talk(server, "Search error: request return null object");

    QCOMPARE(
        sorted(asked.texts().value("QObject")),
        (QStringList{
            "API client is ready",
            "Description",
            "Downloading example: %1",
            "Fetch error: request return null object",
            "Fetch error: request return wrong data - no projects field",
            "Fetch examples",
            "Network error: %1",
            "Repository error: group id not found - unable to fetch examples",
            "Search error: request return null object",
            "Search error: request return wrong data - no id field",
            "Searching examples",
            "This file is used by SDK to show image for example inside Welcome screen.\n"
            "It is not the part of the example.",
            "Unable to download image: %1",
            "example"}));
    QCOMPARE(asked.texts().keys().filter("Varnel"), QStringList());
}

void tst_Translation::statusesAreTranslatedInTheirContexts()
{
    switchToGerman();
    const AskedTexts asked;
    QStringList statuses;
    connect(&m_fixture.service(), &DownloadService::statusChanged, this, [&](const QString &status) {
        statuses.append(status);
    });

    m_fixture.service().save("Other", {"maps"});
    m_fixture.service().registerExample("Other", makeExample("maps"));
    m_fixture.service().registerExample("Demo", makeExample("absent"));

    QCOMPARE(
        statuses,
        (QStringList{
            "Es werden keine Beispiele heruntergeladen - es wurde kein Repository mit diesem Namen gefunden: "
            "Other",
            "Das Beispiel Title of maps wird nicht registriert - es wurde kein Repository mit diesem Namen "
            "gefunden: Other",
            "Beim Erstellen des Beispielmanifests ist ein Fehler aufgetreten"}));
    const QMap<QString, QSet<QString>> texts = asked.texts();
    QVERIFY(texts.value("Varnel::Internal::DownloadService")
                .contains("Skip downloading examples - unable to find repository for name: %1"));
    QVERIFY(texts.value("QObject").contains(
        "Skip registering example %1 - unable to find repository for name: %2"));
    QVERIFY(texts.value("QObject").contains("There was an error while creating example mainfest"));
}

void tst_Translation::theTextFixedAtLoadStaysEnglish()
{
    switchToGerman();
    NoRepository stranger;
    connect(&stranger, SIGNAL(fetched()), &m_fixture.service(), SLOT(onFetched()));
    QStringList statuses;
    connect(&m_fixture.service(), &DownloadService::statusChanged, this, [&](const QString &status) {
        statuses.append(status);
    });

    emit stranger.fetched();

    QCOMPARE(statuses, QStringList{"Unable to cast repository from: QObject"});
}

QTEST_MAIN(tst_Translation)
#include "tst_translation.moc"
