// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/Core/BonjourService.h"

#include "server/Core/Log.h"

#include <avahi-client/client.h>
#include <avahi-client/publish.h>
#include <avahi-common/alternative.h>
#include <avahi-common/error.h>
#include <avahi-common/malloc.h>
#include <avahi-common/strlst.h>
#include <avahi-common/thread-watch.h>

#include <mutex>

#include <unistd.h>

namespace tomelet::http {

namespace {

std::string withoutFinalDot(std::string text)
{
    if (text.ends_with('.')) text.pop_back();
    return text;
}

std::string hostName()
{
    char name[256] = {};
    return gethostname(name, sizeof name - 1) == 0 ? name : "tomelet";
}

struct StringListDeleter
{
    void operator()(AvahiStringList *list) const { avahi_string_list_free(list); }
};
using StringList = std::unique_ptr<AvahiStringList, StringListDeleter>;

StringList listOf(const std::map<std::string, std::string> &txtRecord)
{
    AvahiStringList *list = nullptr;
    for (const auto &[key, value] : txtRecord) list = avahi_string_list_add_pair(list, key.c_str(), value.c_str());
    return StringList(list);
}

} // namespace

// Every callback comes on Avahi's thread. The client calls back from within its own making, before its
// pointer is known here, and so each callback uses the one it is given.
class BonjourService::Publication
{
public:
    explicit Publication(BonjourRecord record)
        : m_record(std::move(record))
        , m_name(m_record.name)
    {
        if (m_name.empty()) m_name = hostName();
        m_poll = avahi_threaded_poll_new();
        if (!m_poll) return;
        connect();
        if (m_client) avahi_threaded_poll_start(m_poll);
    }
    Publication(const Publication &) = delete;
    Publication &operator=(const Publication &) = delete;

    ~Publication()
    {
        if (m_client) avahi_threaded_poll_stop(m_poll);
        if (m_client) avahi_client_free(m_client); // and the group with it
        if (m_poll) avahi_threaded_poll_free(m_poll);
    }

    std::string publishedName()
    {
        const std::lock_guard lock(m_mutex);
        return m_publishedName;
    }

private:
    void connect()
    {
        int error = 0;
        m_client =
            avahi_client_new(avahi_threaded_poll_get(m_poll), AVAHI_CLIENT_NO_FAIL, &clientChanged, this, &error);
    }

    // The daemon went away: a new client waits for it to come back.
    void reconnect(AvahiClient *client)
    {
        m_group = nullptr;
        setPublishedName({});
        if (avahi_client_errno(client) != AVAHI_ERR_DISCONNECTED) return;
        avahi_client_free(client);
        connect();
    }

    static void clientChanged(AvahiClient *client, AvahiClientState state, void *self)
    {
        auto *const publication = static_cast<Publication *>(self);
        if (state == AVAHI_CLIENT_S_RUNNING) publication->publish(client);
        else if (state == AVAHI_CLIENT_S_COLLISION || state == AVAHI_CLIENT_S_REGISTERING) publication->withdraw();
        else if (state == AVAHI_CLIENT_FAILURE) publication->reconnect(client);
    }

    static void groupChanged(AvahiEntryGroup *group, AvahiEntryGroupState state, void *self)
    {
        auto *const publication = static_cast<Publication *>(self);
        if (state == AVAHI_ENTRY_GROUP_ESTABLISHED) publication->setPublishedName(publication->m_name);
        else if (state == AVAHI_ENTRY_GROUP_COLLISION) {
            publication->chooseAnotherName();
            publication->publish(avahi_entry_group_get_client(group));
        }
    }

    void publish(AvahiClient *client)
    {
        if (!m_group) m_group = avahi_entry_group_new(client, &groupChanged, this);
        if (!m_group) return;
        avahi_entry_group_reset(m_group);
        int error = addService();
        while (error == AVAHI_ERR_COLLISION) {
            chooseAnotherName();
            error = addService();
        }
        if (error == AVAHI_OK) error = avahi_entry_group_commit(m_group);
        if (error != AVAHI_OK) logLine(std::string("HTTPServer: Failed to publish service: ") + avahi_strerror(error));
    }

    int addService()
    {
        const StringList txt = listOf(m_record.txtRecord);
        const std::string type = withoutFinalDot(m_record.type);
        const std::string domain = withoutFinalDot(m_record.domain);
        return avahi_entry_group_add_service_strlst(m_group, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, {}, m_name.c_str(),
                                                    type.c_str(), domain.empty() ? nullptr : domain.c_str(), nullptr,
                                                    m_record.port, txt.get());
    }

    void withdraw()
    {
        if (m_group) avahi_entry_group_reset(m_group);
        setPublishedName({});
    }

    void chooseAnotherName()
    {
        char *const other = avahi_alternative_service_name(m_name.c_str());
        m_name = other;
        avahi_free(other);
    }

    void setPublishedName(std::string name)
    {
        const std::lock_guard lock(m_mutex);
        m_publishedName = std::move(name);
    }

    const BonjourRecord m_record;
    std::string m_name;
    AvahiThreadedPoll *m_poll = nullptr;
    AvahiClient *m_client = nullptr;
    AvahiEntryGroup *m_group = nullptr;
    std::mutex m_mutex;
    std::string m_publishedName;
};

BonjourService::BonjourService(BonjourRecord record)
    : m_publication(std::make_unique<Publication>(std::move(record)))
{}

BonjourService::~BonjourService() = default;

std::string BonjourService::publishedName() const
{
    return m_publication->publishedName();
}

} // namespace tomelet::http
