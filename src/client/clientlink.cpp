// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#include "client/clientlink.h"

namespace Varnel::Internal {

ClientLink::ClientLink(ApiClient *client)
    : m_client(client)
{
}

bool ClientLink::withClient(const std::function<void(ApiClient &)> &use)
{
    const std::lock_guard guard(m_lock);
    if (!m_client)
        return false;
    use(*m_client);
    return true;
}

void ClientLink::cut()
{
    const std::lock_guard guard(m_lock);
    m_client = nullptr;
}

} // namespace Varnel::Internal
