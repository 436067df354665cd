// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// A repository: its listing, its readiness, and the downloads chosen by name.

#include "client/repository.h"

#include "common/ideenvironment.h"
#include "common/logrecorder.h"
#include "common/testfiles.h"
#include "server/demoserver.h"

#include <QMetaMethod>
#include <QSignalSpy>
#include <QTest>
#include <QThreadPool>

using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

const QString LISTING = "/api/v4/groups/*";
const QString ARCHIVES = "/api/v4/projects/*";

Project newProject(int id, const QString &path)
{
    Project project;
    project.id = id;
    project.path = path;
    project.name = "Title of " + path;
    project.archive = "archive of " + path.toUtf8();
    return project;
}

QStringList namesOf(const Repository::Examples &examples)
{
    QStringList names;
    for (const Repository::ExamplePtr &example : examples)
        names.append(example->name());
    return names;
}

} // namespace

class tst_Repository final : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void cleanupTestCase();

    void exampleTypesAreRegisteredByName(); // first, as much else would register them
    void theInterfaceIsInItsOrder();
    void theGroupIsListedAsSoonAsItIsFound();
    void withoutAGroupItNeverGetsReady();
    void aResetStartsOver();
    void aResetForgetsWhatIsUnderWay();
    void aResetKeepsTheListing();
    void aFailedListingKeepsTheOldOne_data();
    void aFailedListingKeepsTheOldOne();
    void anEmptyListingReplacesTheOldOne();
    void onlyListedNamesAreDownloaded();
    void namesAreComparedExactly();
    void ofEqualNamesTheFirstIsDownloaded();
    void nothingIsDownloadedBeforeTheFirstListing();
    void aDownloadReturnsAtOnce();
    void downloadsArePassedOn();
    void downloadsArePassedOnAtOnce();
    void receiversMayResetIt_data();
    void receiversMayResetIt();
    void aResetDropsTheDownloadsUnderWay(); // last, as its workers stay until the application quits

private:
    std::unique_ptr<DemoServer> m_server;
};

void tst_Repository::init()
{
    QThreadPool::globalInstance()->setMaxThreadCount(4);
    m_server = std::make_unique<DemoServer>();
}

void tst_Repository::cleanup()
{
    m_server.reset();
}

void tst_Repository::cleanupTestCase()
{
    quitApplication();
}

void tst_Repository::exampleTypesAreRegisteredByName()
{
    const Repository repository(m_server->groupUrl(), nullptr);

    QCOMPARE(
        QMetaType::fromName("QSharedPointer<Varnel::Internal::Example>"),
        QMetaType::fromType<Repository::ExamplePtr>());
    QCOMPARE(
        QMetaType::fromName("QList<QSharedPointer<Varnel::Internal::Example>>"),
        QMetaType::fromType<Repository::Examples>());
}

void tst_Repository::theInterfaceIsInItsOrder()
{
    const QMetaObject &meta = Repository::staticMetaObject;
    QList<std::pair<QByteArray, QMetaMethod::MethodType>> methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        methods.append({meta.method(i).methodSignature(), meta.method(i).methodType()});

    QCOMPARE(
        methods,
        (QList<std::pair<QByteArray, QMetaMethod::MethodType>>{
            {"fetched()", QMetaMethod::Signal},
            {"downloaded(Repository::ExamplePtr)", QMetaMethod::Signal},
            {"onFetched(Repository::Examples)", QMetaMethod::Slot}}));
}

void tst_Repository::theGroupIsListedAsSoonAsItIsFound()
{
    m_server->gitlab().addProject(newProject(1, "a"));
    m_server->gitlab().addProject(newProject(2, "b"));

    const Repository repository(m_server->groupUrl(), nullptr);
    QSignalSpy fetched(&repository, &Repository::fetched);

    QVERIFY(!repository.isReady());
    QVERIFY(repository.examples().isEmpty());
    QVERIFY(fetched.wait());
    QVERIFY(repository.isReady());
    QCOMPARE(namesOf(repository.examples()), (QStringList{"b", "a"}));
    QCOMPARE(m_server->requestCount(), 2);
    QCOMPARE(repository.url(), m_server->groupUrl());
}

void tst_Repository::withoutAGroupItNeverGetsReady()
{
    Repository repository(m_server->url("/"), nullptr);

    repository.reset();
    repository.reset();

    const Repository other(m_server->groupUrl(), nullptr);
    QTRY_VERIFY(other.isReady());
    QVERIFY(!repository.isReady());
}

void tst_Repository::aResetStartsOver()
{
    Repository repository(m_server->groupUrl(), nullptr);
    QSignalSpy fetched(&repository, &Repository::fetched);
    QVERIFY(fetched.wait());
    m_server->hold("*");

    repository.reset();

    QTRY_COMPARE(m_server->heldCount(), 1);
    QVERIFY(!repository.isReady());
    m_server->release("*");
    QVERIFY(fetched.wait());
    QVERIFY(repository.isReady());
    QCOMPARE(m_server->requestCount(), 4);
}

void tst_Repository::aResetForgetsWhatIsUnderWay()
{
    m_server->hold("*");
    Repository repository(m_server->groupUrl(), nullptr);
    const QSignalSpy fetched(&repository, &Repository::fetched);
    QTRY_COMPARE(m_server->heldCount(), 1);

    repository.reset();

    QTRY_COMPARE(m_server->requestCount(), 2);
    QTRY_COMPARE(m_server->heldCount(), 1);
    m_server->release("*");
    QTRY_COMPARE(fetched.size(), 1);
    QCOMPARE(m_server->requestCount(), 3); // two searches, one listing
}

void tst_Repository::aResetKeepsTheListing()
{
    m_server->gitlab().addProject(newProject(1, "a"));
    Repository repository(m_server->groupUrl(), nullptr);
    QTRY_COMPARE(namesOf(repository.examples()), QStringList{"a"});

    repository.reset();

    QCOMPARE(namesOf(repository.examples()), QStringList{"a"});
}

void tst_Repository::aFailedListingKeepsTheOldOne_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");

    QTest::newRow("broken server") << 500 << QByteArray();
    QTest::newRow("no JSON") << 200 << QByteArray("<html>");
    QTest::newRow("no projects") << 200 << QByteArray("{\"id\": 1}");
}

void tst_Repository::aFailedListingKeepsTheOldOne()
{
    QFETCH(const int, status);
    QFETCH(const QByteArray, body);
    m_server->gitlab().addProject(newProject(1, "a"));
    Repository repository(m_server->groupUrl(), nullptr);
    QSignalSpy fetched(&repository, &Repository::fetched);
    QVERIFY(fetched.wait());
    m_server->answer(LISTING, status, body);

    repository.reset();
    QTRY_COMPARE(m_server->requestCount(LISTING), 2);
    QTRY_VERIFY(repository.isReady());

    // A third listing shows that the second one is over.
    m_server->restore();
    m_server->gitlab().addProject(newProject(2, "b"));
    QCOMPARE(namesOf(repository.examples()), QStringList{"a"});
    repository.reset();
    QTRY_COMPARE(fetched.size(), 2);
    QCOMPARE(namesOf(repository.examples()), (QStringList{"b", "a"}));
}

void tst_Repository::anEmptyListingReplacesTheOldOne()
{
    Repository repository(m_server->groupUrl(), nullptr);
    const QSignalSpy fetched(&repository, &Repository::fetched);
    repository.onFetched(makeExamples({"a"}));

    repository.onFetched({});

    QCOMPARE(fetched.size(), 2);
    QVERIFY(repository.examples().isEmpty());
}

void tst_Repository::onlyListedNamesAreDownloaded()
{
    m_server->gitlab().addProject(newProject(1, "b"));
    m_server->gitlab().addProject(newProject(2, "c"));
    Repository repository(m_server->groupUrl(), nullptr);
    QSignalSpy downloaded(&repository, &Repository::downloaded);
    QTRY_COMPARE(repository.examples().size(), 2);

    repository.download({"a", "b"});

    QVERIFY(downloaded.wait());
    QCOMPARE(m_server->requestCount(ARCHIVES), 1);
    QCOMPARE(m_server->requestCount("/api/v4/projects/1/*"), 1);
    const auto example = downloaded.constFirst().constFirst().value<Repository::ExamplePtr>();
    QCOMPARE(example->name(), "b");
    QCOMPARE(example->data(), "archive of b");
    QVERIFY(repository.examples().contains(example));
}

void tst_Repository::namesAreComparedExactly()
{
    m_server->gitlab().addProject(newProject(1, "Maps"));
    m_server->gitlab().addProject(newProject(2, "other"));
    Repository repository(m_server->groupUrl(), nullptr);
    QSignalSpy downloaded(&repository, &Repository::downloaded);
    QTRY_COMPARE(repository.examples().size(), 2);

    repository.download({"maps", "Map", "Title of Maps", "", "other"});

    QVERIFY(downloaded.wait());
    QCOMPARE(m_server->requestCount(ARCHIVES), 1);
    QCOMPARE(m_server->requestCount("/api/v4/projects/2/*"), 1);
}

void tst_Repository::ofEqualNamesTheFirstIsDownloaded()
{
    Repository repository(m_server->groupUrl(), nullptr);
    QSignalSpy fetched(&repository, &Repository::fetched);
    QSignalSpy downloaded(&repository, &Repository::downloaded);
    QVERIFY(fetched.wait());
    const Repository::Examples twins{makeExample("twin", {{"id", 1}}), makeExample("twin", {{"id", 2}})};
    repository.onFetched(twins);
    m_server->answer(ARCHIVES, 200, "archive");

    repository.download({"twin"});

    QVERIFY(downloaded.wait());
    QCOMPARE(downloaded.constFirst().constFirst().value<Repository::ExamplePtr>(), twins.constFirst());
    QCOMPARE(m_server->requestCount(ARCHIVES), 1);
}

void tst_Repository::nothingIsDownloadedBeforeTheFirstListing()
{
    m_server->gitlab().addProject(newProject(1, "a"));
    Repository repository(m_server->groupUrl(), nullptr);
    QSignalSpy fetched(&repository, &Repository::fetched);

    repository.download({"a"});

    QVERIFY(fetched.wait());
    QCOMPARE(m_server->requestCount(ARCHIVES), 0);
}

void tst_Repository::aDownloadReturnsAtOnce()
{
    m_server->gitlab().addProject(newProject(1, "a"));
    Repository repository(m_server->groupUrl(), nullptr);
    QSignalSpy downloaded(&repository, &Repository::downloaded);
    QTRY_COMPARE(repository.examples().size(), 1);

    repository.download({"a"});
    const qsizetype before = downloaded.size();

    // The answer needs the event loop of this thread.
    QCOMPARE(before, 0);
    QVERIFY(downloaded.wait());
}

void tst_Repository::downloadsArePassedOn()
{
    m_server->gitlab().addProject(newProject(1, "a"));
    Repository repository(m_server->groupUrl(), nullptr);
    QTRY_COMPARE(repository.examples().size(), 1);
    QThread *thread = nullptr;
    connect(
        &repository,
        &Repository::downloaded,
        this,
        [&thread] { thread = QThread::currentThread(); },
        Qt::DirectConnection);

    repository.download({"a"});

    QTRY_COMPARE(thread, QThread::currentThread());
}

void tst_Repository::downloadsArePassedOnAtOnce()
{
    m_server->gitlab().addProject(
        newProject(1, "a")); // without a picture, which is said after it is announced
    Repository repository(m_server->groupUrl(), nullptr);
    QTRY_COMPARE(repository.examples().size(), 1);
    const LogRecorder log;
    const auto complaints
        = [&log] { return log.lines(LogRecorder::API).filter("Unable to download image").size(); };
    QList<qsizetype> complaintsBefore;
    connect(&repository, &Repository::downloaded, this, [&] { complaintsBefore.append(complaints()); });

    repository.download({"a"});

    QTRY_COMPARE(complaints(), 1);
    QCOMPARE(complaintsBefore, QList<qsizetype>{0});
}

void tst_Repository::receiversMayResetIt_data()
{
    QTest::addColumn<bool>("isListing"); // else: a download

    QTest::newRow("listed") << true;
    QTest::newRow("downloaded") << false;
}

void tst_Repository::receiversMayResetIt()
{
    QFETCH(const bool, isListing);
    m_server->gitlab().addProject(newProject(1, "a"));
    Repository repository(m_server->groupUrl(), nullptr);
    int resets = 0;
    const auto reset = [&repository, &resets] {
        if (resets++ == 0)
            repository.reset();
    };
    if (isListing) {
        connect(&repository, &Repository::fetched, this, reset);
    } else {
        connect(&repository, &Repository::fetched, this, [&repository] { repository.download({"a"}); });
        connect(&repository, &Repository::downloaded, this, reset);
    }

    // The second one comes from the new client.
    QTRY_COMPARE(resets, 2);
    QVERIFY(repository.isReady());
    QCOMPARE(namesOf(repository.examples()), QStringList{"a"});
}

void tst_Repository::aResetDropsTheDownloadsUnderWay()
{
    QThreadPool::globalInstance()->setMaxThreadCount(8);
    for (int id = 1; id <= 20; ++id)
        m_server->gitlab().addProject(newProject(id, QString("demo-%1").arg(id)));
    Repository repository(m_server->groupUrl(), nullptr);
    const QSignalSpy downloaded(&repository, &Repository::downloaded);
    QTRY_COMPARE(repository.examples().size(), 20);
    m_server->hold(ARCHIVES);
    QSet<QString> names;
    for (const Repository::ExamplePtr &example : repository.examples())
        names.insert(example->name());
    repository.download(names);
    QTRY_VERIFY(m_server->heldCount() > 0);

    repository.reset();

    QTRY_COMPARE(m_server->heldCount(), 0);
    m_server->release(ARCHIVES);
    QThreadPool::globalInstance()->setMaxThreadCount(30); // room for what was queued, and for one more
    QTRY_VERIFY(repository.isReady());
    m_server->clearRequests();
    repository.download({"demo-7"});
    QTRY_COMPARE(downloaded.size(), 1);
    QCOMPARE(downloaded.constFirst().constFirst().value<Repository::ExamplePtr>()->name(), "demo-7");
    QCOMPARE(m_server->requestCount(ARCHIVES), 1);
}

QTEST_MAIN(tst_Repository)
#include "tst_repository.moc"
