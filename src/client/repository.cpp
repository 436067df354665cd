// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "client/repository.h"

#include "client/apiclient.h"

namespace Varnel::Internal {

Repository::Repository(const QUrl &url, QObject *parent)
    : QObject(parent)
    , m_url(url)
{
    qRegisterMetaType<Repository::ExamplePtr>();
    qRegisterMetaType<Repository::Examples>();
    reset();
}

Repository::~Repository() = default;

void Repository::reset()
{
    m_client = std::make_unique<ApiClient>(m_url, nullptr);
    connect(m_client.get(), &ApiClient::downloaded, this, &Repository::downloaded);
    connect(m_client.get(), &ApiClient::fetched, this, &Repository::onFetched);
    connect(m_client.get(), &ApiClient::ready, m_client.get(), &ApiClient::fetch);
}

bool Repository::isReady() const
{
    return m_client && m_client->isReady();
}

void Repository::download(const QSet<QString> &names)
{
    QHash<QString, ExamplePtr> firstByName;
    for (const ExamplePtr &example : std::as_const(m_examples)) {
        const QString name = example->name();
        if (!firstByName.contains(name))
            firstByName.insert(name, example);
    }

    Examples chosen;
    for (const QString &name : names) {
        if (const ExamplePtr example = firstByName.value(name))
            chosen.append(example);
    }
    m_client->download(chosen);
}

void Repository::onFetched(const Examples &examples)
{
    m_examples = examples;
    emit fetched();
}

} // namespace Varnel::Internal
