// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later
// Answers that are larger than they may be, or have no end.

#include "client/apiclient.h"

#include "common/archivebuilder.h"
#include "common/clientrecorder.h"
#include "common/ideenvironment.h"
#include "common/testfiles.h"
#include "server/demoserver.h"

#include <QRandomGenerator>
#include <QTest>

using namespace Varnel::Demo;
using namespace Varnel::Internal;
using namespace Varnel::Test;

namespace {

constexpr qint64 MEBIBYTE = 1024 * 1024;
constexpr qint64 BOUND = MEBIBYTE; // of all answers, where nothing else is said
const QString ABORTED = "Network error: Operation canceled";

enum class Kind { Search, Listing, Archive, Picture };

struct Question
{
    const char *name;
    Kind kind;
    QString route;
};

const QList<Question> &requests()
{
    static const QList<Question> ALL{
        {"search", Kind::Search, "/api/v4/groups"},
        {"listing", Kind::Listing, "/api/v4/groups/*"},
        {"archive", Kind::Archive, "/api/v4/projects/*"},
        {"picture", Kind::Picture, "/picture"}};
    return ALL;
}

/** Compresses to a tenth or so: less would be a bomb that the network layer itself refuses. */
QByteArray compressible(qsizetype size)
{
    QRandomGenerator random(1);
    QByteArray bytes;
    while (bytes.size() < size)
        bytes += QByteArray::number(random.generate(), 16) + QByteArray(72, 'x');
    return bytes.first(size);
}

/** A usable answer to a search or a listing, or anything else, of this size. */
QByteArray body(Kind kind, qint64 size)
{
    const QByteArray content = kind == Kind::Search    ? R"({"id":7})"
                               : kind == Kind::Listing ? R"({"projects":[]})"
                                                       : "";
    return content + QByteArray(size - content.size(), ' ');
}

/** One example of one client, as far as a request. */
class Subject final
{
public:
    explicit Subject(const Question &request)
        : m_request(request)
    {
        m_server.answer("/api/v4/projects/*", 200, "archive");
        m_server.answer("/picture", 200, encodedPicture({8, 8}));
    }

    [[nodiscard]] DemoServer &server() { return m_server; }
    [[nodiscard]] QStringList lines() const { return m_recorder ? m_recorder->lines() : QStringList(); }

    void start(const ApiClient::BodyBounds &bounds)
    {
        m_client = std::make_unique<ApiClient>(m_server.groupUrl(), nullptr);
        m_client->setBodyBounds(bounds);
        m_recorder = std::make_unique<ClientRecorder>(*m_client);
        if (m_request.kind == Kind::Search)
            return;
        if (!QTest::qWaitFor([this] { return m_client->isReady(); }))
            qFatal("the client does not get ready");
        m_recorder->clear();
        if (m_request.kind == Kind::Listing)
            m_client->fetch();
        else
            m_client->download(Repository::Examples{
                makeExample("subject", {{"avatar_url", m_server.url("/picture").toString()}})});
    }

    /** What the client says after a success or a failure of the request. */
    [[nodiscard]] QStringList expected(bool isSuccess) const
    {
        const QString error = isSuccess ? QString() : ABORTED;
        const QString beginning = "worker: Downloading example: Title of subject";
        const QString noPicture = "Unable to download image: " + m_server.url("/picture").toString();
        switch (m_request.kind) {
        case Kind::Search:
            return isSuccess ? QStringList{"Searching examples", "", "API client is ready", "ready"}
                             : QStringList{"Searching examples", error};
        case Kind::Listing:
            return isSuccess ? QStringList{"Fetch examples", "", "fetched 0"}
                             : QStringList{"Fetch examples", error};
        case Kind::Archive:
            return isSuccess ? QStringList{beginning, "downloaded subject", ""}
                             : QStringList{beginning, error};
        case Kind::Picture:
            return isSuccess ? QStringList{beginning, "downloaded subject", ""}
                             : QStringList{beginning, error, "downloaded subject", noPicture};
        }
        return {};
    }

private:
    const Question m_request;
    DemoServer m_server;
    std::unique_ptr<ApiClient> m_client;
    std::unique_ptr<ClientRecorder> m_recorder;
};

constexpr ApiClient::BodyBounds SMALL{.json = BOUND, .archive = BOUND, .picture = BOUND};

} // namespace

class tst_BodyBounds final : public QObject
{
    Q_OBJECT

private slots:
    void cleanupTestCase();

    void aBodyWithoutAnEndFails_data();
    void aBodyWithoutAnEndFails();
    void aWholeBodyIsMeasuredToTheByte_data();
    void aWholeBodyIsMeasuredToTheByte();
    void aBodyIsMeasuredAsItIsDecompressed_data();
    void aBodyIsMeasuredAsItIsDecompressed();
    void eachKindOfAnswerHasItsBound();
    void picturesHaveTheirDefaultBound_data();
    void picturesHaveTheirDefaultBound();
};

void tst_BodyBounds::cleanupTestCase()
{
    quitApplication();
}

void tst_BodyBounds::aBodyWithoutAnEndFails_data()
{
    QTest::addColumn<const Question *>("request");
    QTest::addColumn<int>("status");
    QTest::addColumn<Framing>("framing");

    for (const Question &request : requests()) {
        for (const int status : {200, 302, 403, 404, 500}) {
            QTest::addRow("%s, status %d", request.name, status) << &request << status << Framing::Length;
            QTest::addRow("%s, status %d, in chunks", request.name, status)
                << &request << status << Framing::Chunked;
        }
    }
}

void tst_BodyBounds::aBodyWithoutAnEndFails()
{
    QFETCH(const Question *, request);
    QFETCH(const int, status);
    QFETCH(const Framing, framing);
    Subject subject(*request);
    subject.server().answer(request->route, status, QByteArray(3 * BOUND, ' '), {{"Location", "/elsewhere"}});
    // What comes is beyond the bound, and the rest never does.
    subject.server().addFault(
        request->route, {.cutAfter = 2 * BOUND, .end = Fault::End::Stall, .framing = framing});

    subject.start(SMALL);

    QTRY_COMPARE(subject.lines(), subject.expected(false));
    QCOMPARE(subject.server().requestCount("/elsewhere"), 0);
    QTRY_COMPARE(subject.server().heldCount(), 0); // the connection is gone
}

void tst_BodyBounds::aWholeBodyIsMeasuredToTheByte_data()
{
    QTest::addColumn<const Question *>("request");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<bool>("isTaken");

    for (const Question &request : requests()) {
        QTest::addRow("%s of its bound", request.name) << &request << BOUND << true;
        QTest::addRow("%s beyond it", request.name) << &request << BOUND + 1 << false;
    }
}

void tst_BodyBounds::aWholeBodyIsMeasuredToTheByte()
{
    QFETCH(const Question *, request);
    QFETCH(const qint64, size);
    QFETCH(const bool, isTaken);
    Subject subject(*request);
    subject.server().answer(request->route, 200, body(request->kind, size));

    subject.start(SMALL);

    QTRY_COMPARE(subject.lines(), subject.expected(isTaken));
}

void tst_BodyBounds::aBodyIsMeasuredAsItIsDecompressed_data()
{
    QTest::addColumn<const Question *>("request");
    for (const Question &request : requests())
        QTest::newRow(request.name) << &request;
}

void tst_BodyBounds::aBodyIsMeasuredAsItIsDecompressed()
{
    QFETCH(const Question *, request);
    const QByteArray sent = gzipped(compressible(2 * BOUND));
    QCOMPARE_LT(sent.size(), BOUND / 2);
    Subject subject(*request);
    subject.server().answer(request->route, 200, sent, {{"Content-Encoding", "gzip"}});

    subject.start(SMALL);

    QTRY_COMPARE(subject.lines(), subject.expected(false));
}

void tst_BodyBounds::eachKindOfAnswerHasItsBound()
{
    const DemoServer server;
    const ApiClient client(server.groupUrl(), nullptr);

    QCOMPARE(client.bodyBounds().archive, 1024 * MEBIBYTE);
    QCOMPARE(client.bodyBounds().json, 256 * MEBIBYTE);
    QCOMPARE(client.bodyBounds().picture, 64 * MEBIBYTE);
}

void tst_BodyBounds::picturesHaveTheirDefaultBound_data()
{
    QTest::addColumn<qint64>("size");
    QTest::addColumn<bool>("isTaken");

    QTest::newRow("of the bound") << 64 * MEBIBYTE << true;
    QTest::newRow("beyond it") << 64 * MEBIBYTE + 1 << false;
}

void tst_BodyBounds::picturesHaveTheirDefaultBound()
{
    QFETCH(const qint64, size);
    QFETCH(const bool, isTaken);
    Subject subject(requests().constLast());
    subject.server().answer("/picture", 200, body(Kind::Picture, size));

    subject.start({});

    QTRY_COMPARE_WITH_TIMEOUT(subject.lines(), subject.expected(isTaken), 30'000);
}

QTEST_MAIN(tst_BodyBounds)
#include "tst_bodybounds.moc"
