// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "checker.h"

#include "archiveprobe.h"
#include "groupprobe.h"
#include "linkprobe.h"
#include "manifestprobe.h"
#include "samples.h"

#include "client/answers.h"
#include "client/picture.h"
#include "client/transfer.h"
#include "service/archivejudge.h"
#include "service/filesystem.h"
#include "service/placement.h"
#include "service/registration.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonDocument>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace Varnel::Check {

using namespace Internal;

namespace {

// Archives that wait for their vetting are in memory.
constexpr qsizetype MOST_WAITING = 4;
constexpr qsizetype MOST_NAMED = 20; // projects in one text

FailedRequest failedRequest(const QUrl &url, const TransferResult &result)
{
    const QUrl last = result.url.isEmpty() ? url : result.url;
    return {.url = last, .status = result.status, .error = result.error};
}

QString groupPath(const QUrl &url)
{
    return url.path(QUrl::FullyDecoded).split(u'/', Qt::SkipEmptyParts).join(u'/');
}

// The report has them all.
QString firstOf(const QStringList &names)
{
    Samples samples(MOST_NAMED);
    for (const QString &name : names)
        samples.add(name);
    return samples.text();
}

bool isWanted(const QString &path, const QString &pattern)
{
    return pattern.isEmpty()
           || QRegularExpression::fromWildcard(pattern, Qt::CaseInsensitive).match(path).hasMatch();
}

} // namespace

Checker::Checker(const Setup &setup)
    : m_setup(setup)
    , m_client(setup.url, nullptr)
    , m_paged(setup.timeout)
    , m_queue(
          m_worker,
          {.examples = [this](const QString &) { return m_listed; },
           .names = [this] { return QStringList{m_setup.name}; }},
          this)
{
    m_report.repositoryName = setup.name;
    m_report.url = setup.url;
    m_report.group.requested = groupPath(setup.url);
    m_downloads.setMaxThreadCount(setup.jobs);
    m_client.setListingTimeout(setup.timeout);
    m_client.setDownloadTimeout(setup.timeout);
    m_client.setObserver([this](const QUrl &url, const TransferResult &result) { onResult(url, result); });
}

Checker::~Checker()
{
    stop();
}

void Checker::start()
{
    connect(&m_client, &ApiClient::ready, &m_client, &ApiClient::fetch);
    connect(&m_client, &ApiClient::fetched, this, &Checker::onFetched);
    connect(&m_client, &ApiClient::downloaded, this, [this](const ExamplePtr &example) {
        if (const JobPtr job = m_downloading.value(example.get()))
            job->hasArrived = true;
    });
    connect(&m_paged, &PagedListing::finished, this, &Checker::onCompared);
    // Behind the client's own, which ends the downloads.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &Checker::stop);
}

void Checker::stop()
{
    if (std::exchange(m_isStopped, true))
        return;
    m_downloads.clear();
    m_downloads.waitForDone();
    m_worker.stop();
    m_queue.stop();
}

void Checker::onResult(const QUrl &url, const TransferResult &result)
{
    switch (m_stage) {
    case Stage::Searching:
        onSearched(url, result);
        return;
    case Stage::Listing:
        onListing(url, result);
        return;
    case Stage::Downloading:
        break;
    }
    if (!result.hasSucceeded)
        m_failures.insert(url, failedRequest(url, result));
    else if (m_pictureUrls.contains(url))
        m_pictureSizes.insert(url, decodePicture(result.body).size());
}

void Checker::onSearched(const QUrl &url, const TransferResult &result)
{
    m_stage = Stage::Listing;
    if (!result.hasSucceeded) {
        giveUp(
            makeFinding("search-failed"_L1, {}, u"the search did not succeed"_s, failedRequest(url, result)));
        return;
    }
    const QJsonDocument document = parseAnswer(result.body);
    if (document.isArray() && document.array().isEmpty()) {
        giveUp(makeFinding(
            "group-not-found"_L1,
            {},
            u"no group matches \"%1\""_s.arg(m_report.group.requested),
            failedRequest(url, result)));
        return;
    }
    const GroupAnswer answer = readGroup(document);
    if (answer.id == 0) {
        const QString fault = answer.fault.isEmpty() ? u"the group's number cannot be used"_s : answer.fault;
        giveUp(makeFinding("search-unusable"_L1, {}, fault, failedRequest(url, result)));
        return;
    }
    m_report.group.found = readHits(result.body);
    m_report.findings += judgeHits(m_report.group);
}

void Checker::onListing(const QUrl &url, const TransferResult &result)
{
    m_stage = Stage::Downloading;
    if (!result.hasSucceeded) {
        giveUp(makeFinding("listing-failed"_L1, {}, u"the list did not come"_s, failedRequest(url, result)));
        return;
    }
    if (const ListingAnswer answer = readListing(parseAnswer(result.body)); !answer.fault.isEmpty()) {
        giveUp(makeFinding("listing-unusable"_L1, {}, answer.fault, failedRequest(url, result)));
        return;
    }
    m_projects = readProjects(result.body);
    m_isComparing = true;
    m_paged.start(url);
}

// Never from within the client's own doings: who hears of the end may destroy it.
void Checker::giveUp(const Finding &finding)
{
    m_report.findings.append(finding);
    QMetaObject::invokeMethod(this, &Checker::finished, Qt::QueuedConnection);
}

void Checker::onFetched(const Examples &examples)
{
    m_listed = examples;
    GroupReport &group = m_report.group;
    group.isListed = true;
    group.listed = examples.size();
    group.dropped = findDropped(m_projects);
    m_report.findings += judgeListing(group);

    const ListedTexts texts(examples);
    QSet<QString> seen;
    for (const ExamplePtr &example : examples) {
        const ExampleReport report = describeExample(example, texts);
        // As in the IDE, the first one of a path counts.
        if (!isWanted(report.path, m_setup.only) || seen.contains(report.path))
            continue;
        seen.insert(report.path);
        m_report.findings += judgeTexts(report, texts);
        const auto job = std::make_shared<Job>(Job{.example = example, .index = m_report.examples.size()});
        m_report.examples.append(report);
        m_waiting.append(job);
        m_pictureUrls.insert(ApiClient::pictureUrl(*job->example));
    }
    if (m_waiting.isEmpty() && !examples.isEmpty())
        m_report.findings.append(
            makeFinding("selection-empty"_L1, {}, u"the pattern is \"%1\""_s.arg(m_setup.only)));
    m_all = m_waiting.size();
    emit listed(seen.values());
    startNext();
    finishWhenAllIsDone();
}

void Checker::onCompared()
{
    m_isComparing = false;
    GroupReport &group = m_report.group;
    if (m_paged.failure()) {
        m_report.findings.append(makeFinding(
            "listing-not-compared"_L1, {}, u"the list page by page did not come"_s, m_paged.failure()));
    } else {
        group.isCompared = true;
        QSet<double> carried;
        for (const QJsonValue project : std::as_const(m_projects))
            carried.insert(project["id"_L1].toDouble());
        for (const PagedListing::Project &project : m_paged.projects()) {
            if (!carried.contains(project.id))
                group.beyondListing.append(project.path);
        }
    }
    if (!group.beyondListing.isEmpty()) {
        m_report.findings.append(makeFinding(
            "listing-cut"_L1,
            {},
            u"%1 of %2%3 projects: %4"_s.arg(group.beyondListing.size())
                .arg(m_paged.isWhole() ? QString() : u"more than "_s)
                .arg(m_paged.projects().size())
                .arg(firstOf(group.beyondListing))));
    }
    finishWhenAllIsDone();
}

void Checker::startNext()
{
    emit progressed({.done = m_all - m_waiting.size() - m_unfinished, .all = m_all, .bytes = m_bytes});
    while (!m_waiting.isEmpty() && m_downloading.size() < m_setup.jobs
           && m_unfinished < m_setup.jobs + MOST_WAITING) {
        const JobPtr job = m_waiting.takeFirst();
        ++m_unfinished;
        m_downloading.insert(job->example.get(), job);
        m_downloads.start([this, job] {
            m_client.download(job->example);
            QMetaObject::invokeMethod(this, [this, job] { onReturned(job); }, Qt::QueuedConnection);
        });
    }
}

void Checker::onReturned(const JobPtr &job)
{
    m_downloading.remove(job->example.get());
    if (m_isStopped)
        return;
    if (job->hasArrived) {
        unpack(job);
    } else {
        m_report.findings.append(makeFinding(
            "archive-failed"_L1,
            job->example->name(),
            u"it was asked for in vain"_s,
            failureOf(m_client.archiveUrl(*job->example))));
        finishJob();
    }
    startNext();
}

void Checker::unpack(const JobPtr &job)
{
    const QByteArray archive = job->example->data();
    m_bytes += archive.size();
    if (archive.isEmpty()) {
        add(job, "archive-empty"_L1, u"it has no bytes"_s);
        finishJob();
        return;
    }
    ArchiveReport &report = archiveReportOf(*job);
    report.size = archive.size();
    lookAtCommit(job, archive);
    const std::optional<ArchiveFile> file = saveArchive(job->example);
    if (!file) {
        if (reportOf(*job).isPathPlain)
            add(job, "archive-not-saved"_L1, u"no file can be made"_s);
        finishJob();
        return;
    }
    m_queue.add(
        {.repositoryName = m_setup.name,
         .example = job->example,
         .archiveFile = file->path,
         .source = file->source,
         .onDone = [this, job](const std::optional<UnpackedCopy> &copy) { onUnpacked(job, copy); },
         .onVetted = [this, job](const ArchiveVerdict &verdict) { onVetted(job, verdict); },
         .onObstacle =
             [this, job](const QString &obstacle) {
                 add(job, "archive-obstacle"_L1, obstacle);
                 job->hasFailed = true;
             }});
    job->example->setData({}); // the queue has its own
}

// Even the first entry may take seconds. It comes before the vetting, and so before the job is over.
void Checker::lookAtCommit(const JobPtr &job, const QByteArray &archive)
{
    m_worker.run(
        BackgroundWorker::Vetting,
        this,
        [archive](const std::stop_token &stop) { return commitTimeOf(archive, stop); },
        [this, job](const QDateTime &time) { archiveReportOf(*job).commitTime = time; });
}

// Tens of thousands of links, each through others, would hold the main loop. As placing, which is next for
// this archive, so that it is over before the job is.
void Checker::lookAtLinks(const JobPtr &job, const std::shared_ptr<const PathTree> &paths)
{
    const QString path = job->example->name();
    m_worker.run(
        BackgroundWorker::Placing,
        this,
        [path, paths](const std::stop_token &stop) { return judgeLinks(path, *paths, stop); },
        [this](const Findings &findings) { m_report.findings += findings; });
}

ArchiveReport &Checker::archiveReportOf(const Job &job)
{
    std::optional<ArchiveReport> &archive = reportOf(job).archive;
    return archive ? *archive : archive.emplace();
}

void Checker::onVetted(const JobPtr &job, const ArchiveVerdict &verdict)
{
    ArchiveReport &report = archiveReportOf(*job);
    report.isAccepted = verdict.isAccepted;
    report.reason = verdict.reason;
    report.topDirectory = verdict.topDirectory;
    m_report.findings += judgeArchive(job->example->name(), report.size, verdict);
    job->hasFailed = !verdict.isAccepted;
    if (!verdict.isAccepted)
        return;
    report.entries = verdict.paths->size();
    lookAtLinks(job, verdict.paths);
    m_report.findings += judgeNames(job->example->name(), *verdict.paths);
    for (const auto &[name, node] : verdict.paths->root().children)
        m_topNames.insert(QFile::decodeName(name));
}

void Checker::onUnpacked(const JobPtr &job, const std::optional<UnpackedCopy> &copy)
{
    if (!copy) {
        if (!job->hasFailed)
            add(job, "archive-not-unpacked"_L1, u"the unarchiver failed"_s);
        lookAtPicture(job, nullptr);
        finishJob();
        return;
    }
    lookAtPicture(job, &*copy);
    install(job, *copy);
    finishJob();
}

void Checker::install(const JobPtr &job, const UnpackedCopy &copy)
{
    const QString directory = exampleDirectory(m_setup.name, job->example->name());
    Registration registration(
        job->example,
        {.repositoryName = m_setup.name,
         .listed = m_listed,
         .repositoryNames = {m_setup.name},
         .copy = copy,
         .removeCopy = [this](const QString &old) { m_worker.removeTree(old); },
         .isBeingRemoved = [this](const QString &old) { return m_worker.isRemoving(old); }});
    if (registration.run())
        reportOf(*job).manifest = readManifest(directory);
    else if (copy.files.project.isEmpty())
        add(job, "project-file-missing"_L1, u"neither CMakeLists.txt nor a .pro file"_s);
    else
        add(job, "registration-failed"_L1, u"it could not be registered"_s);
    if (!m_setup.keepsExamples)
        m_worker.removeTree(directory);
}

// The registration takes the avatar if there is one, else the icon.
void Checker::lookAtPicture(const JobPtr &job, const UnpackedCopy *copy)
{
    PictureReport &picture = reportOf(*job).picture;
    std::optional<AvatarAnswer> avatar;
    if (const QUrl url = ApiClient::pictureUrl(*job->example); !url.isEmpty())
        avatar = AvatarAnswer{.size = m_pictureSizes.value(url), .failure = failureOf(url)};
    if (const QImage image = job->example->image(); !image.isNull()) {
        picture
            = {.source = PictureSource::Avatar,
               .place = ApiClient::pictureUrl(*job->example).toDisplayString(),
               .size = avatar ? avatar->size : QSize(),
               .png = tilePicture(image)};
    } else if (copy && !copy->files.icon.isEmpty()) {
        const QImage icon = readIcon(copy->files.icon);
        const QString parent = QFileInfo(copy->directory).canonicalFilePath();
        picture
            = {.source = PictureSource::Icon,
               .place = copy->files.icon.startsWith(parent) ? copy->files.icon.sliced(parent.size() + 1)
                                                            : copy->files.icon,
               .size = icon.size(),
               .png = tilePicture(icon)};
    }
    m_report.findings += judgePicture(job->example->name(), picture, avatar);
}

void Checker::finishJob()
{
    --m_unfinished;
    startNext();
    finishWhenAllIsDone();
}

void Checker::finishWhenAllIsDone()
{
    if (m_isComparing || !m_report.group.isListed || !m_waiting.isEmpty() || m_unfinished > 0)
        return;
    m_report.isComplete = true;
    sortFindings();
    // Behind all that is still being removed: of equal work the first comes first, and nothing is less
    // urgent.
    m_worker.run(
        BackgroundWorker::Vetting,
        this,
        [](const std::stop_token &) { return true; },
        [this](bool) { emit finished(); });
}

void Checker::add(const JobPtr &job, QLatin1StringView id, const QString &text)
{
    m_report.findings.append(makeFinding(id, job->example->name(), text));
}

void Checker::sortFindings()
{
    QHash<QString, qsizetype> places;
    for (qsizetype i = 0; i < m_report.examples.size(); ++i)
        places.insert(m_report.examples.at(i).path, i);
    std::ranges::stable_sort(m_report.findings, {}, [&](const Finding &finding) {
        return std::pair(places.value(finding.subject, -1), finding.kind);
    });
}

std::optional<FailedRequest> Checker::failureOf(const QUrl &url) const
{
    const auto found = m_failures.constFind(url);
    return found == m_failures.cend() ? std::nullopt : std::optional(*found);
}

} // namespace Varnel::Check
