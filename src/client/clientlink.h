// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <functional>
#include <mutex>

namespace Varnel::Internal {

class ApiClient;

/** Lets workers that outlive a client reach it as long as the client lives. Any thread. */
class ClientLink final
{
public:
    explicit ClientLink(ApiClient *client);

    /** Calls @p use with the client and keeps it alive meanwhile; false if it is gone. */
    bool withClient(const std::function<void(ApiClient &)> &use);
    /** To be called first in the client's destructor; waits for a use in progress. */
    void cut();

private:
    std::mutex m_lock;
    ApiClient *m_client; // null once cut
};

} // namespace Varnel::Internal
