// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "processorsplit.h"

#include "measure.h"
#include "service/archivejudge.h"
#include "service/archivereader.h"
#include "service/archivevetting.h"
#include "service/placement.h"
#include "service/projectfiles.h"
#include "service/registration.h"

#include <QDir>
#include <QFile>

#include <limits>
#include <stdexcept>

namespace Varnel::Bench {

namespace {

using namespace Internal;

double processorTime(const std::function<bool()> &work)
{
    const double before = threadSeconds();
    if (!work())
        throw std::runtime_error("a step has failed");
    return threadSeconds() - before;
}

bool readWhole(const QByteArray &archive, ArchiveJudge *judge = nullptr)
{
    ArchiveReader reader(archive, {});
    while (std::optional<ArchiveEntry> entry = reader.nextEntry()) {
        if (judge && judge->judge(*entry) != ArchiveJudge::Ruling::Accept)
            return false;
        while (reader.nextPiece()) {
        }
    }
    return reader.fault().isEmpty() && (!judge || judge->verdict().isAccepted);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/** Sums up the steps of all examples. */
class Split final
{
public:
    explicit Split(const QString &repositoryName)
        : m_repositoryName(repositoryName)
    {
    }

    void add(const Repository::ExamplePtr &example)
    {
        addVetting(example->data());
        addRegistration(example);
    }

    [[nodiscard]] QJsonObject result() const
    {
        return {
            {"reading the archive", m_reading},
            {"judging it", m_readingAndJudging - m_reading},
            {"writing the fresh one", m_vetting - m_readingAndJudging - m_readingBack},
            {"reading that back", m_readingBack},
            {"choosing project, file and icon", m_search},
            {"encoding the picture", m_picture},
            {"placing, manifest", m_registration}};
    }

private:
    void addVetting(const QByteArray &archive)
    {
        const QString file = QDir::tempPath() + "/measured.tar.gz";
        m_reading += processorTime([&] { return readWhole(archive); });
        m_readingAndJudging += processorTime([&] {
            ArchiveJudge judge(std::numeric_limits<quint64>::max());
            return readWhole(archive, &judge);
        });
        m_vetting += processorTime([&] { return vetArchive(archive, file, -1, {}).isAccepted; });
        const QByteArray fresh = contentOf(file);
        m_readingBack += processorTime([&] { return readWhole(fresh); });
        QFile::remove(file);
    }

    // As after the unpacking, what was found out before is given to the registration.
    void addRegistration(const Repository::ExamplePtr &example)
    {
        UnpackedCopy copy{.directory = exampleDirectory(m_repositoryName, example->name())};
        m_search += processorTime([&] {
            copy.files = findProjectFiles(copy.directory);
            return !copy.files.project.isEmpty();
        });
        m_picture += processorTime([&] {
            copy.picture = encodePicture(example->image());
            return !copy.picture.bytes.isEmpty();
        });
        const RegistrationContext context{
            .repositoryName = m_repositoryName,
            .listed = {},
            .repositoryNames = {m_repositoryName},
            .copy = copy,
            .removeCopy = [](const QString &) {},
            .isBeingRemoved = [](const QString &) { return false; }};
        m_registration += processorTime([&] { return Registration(example, context).run(); });
    }

    const QString m_repositoryName;
    double m_reading = 0;
    double m_readingAndJudging = 0;
    double m_vetting = 0;
    double m_readingBack = 0;
    double m_search = 0;
    double m_picture = 0;
    double m_registration = 0;
};

} // namespace

QJsonObject processorSplit(const QString &repositoryName, const Repository::Examples &examples)
{
    Split split(repositoryName);
    for (const Repository::ExamplePtr &example : examples)
        split.add(example);
    return split.result();
}

} // namespace Varnel::Bench
