#include "Platform/Linux/Secrets/DesktopKeyring.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"

#include <QFileInfo>
#include <condition_variable>
#include <deque>
#include <libsecret/secret.h>
#include <mutex>
#include <thread>

namespace corvane {

namespace {

using Failure = Keyring::Failure;
using Unlock = Keyring::Unlock;
using Outcome = std::expected<Keyring::Secrets, Failure>;

constexpr const char* service = "com.nimb.corvane";

const SecretSchema* schema()
{
    static const SecretSchema* const made = secret_schema_new(service, SECRET_SCHEMA_NONE, "service",
        SECRET_SCHEMA_ATTRIBUTE_STRING, "account", SECRET_SCHEMA_ATTRIBUTE_STRING, nullptr);
    return made;
}

/// Checked before the first call, because the library searches for a missing bus in other ways.
bool hasSessionBus()
{
    const QString runtimeFolder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")
        || (!runtimeFolder.isEmpty() && QFileInfo::exists(runtimeFolder + u"/bus"_s));
}

bool isAbsence(const GError* error)
{
    return g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN)
        || g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER)
        || (error->domain == G_DBUS_ERROR && error->code >= G_DBUS_ERROR_SPAWN_EXEC_FAILED
            && error->code <= G_DBUS_ERROR_SPAWN_NO_MEMORY);
}

Failure failureOf(const GError* error)
{
    if (isAbsence(error))
        return Failure::Absent;
    if (g_error_matches(error, SECRET_ERROR, SECRET_ERROR_IS_LOCKED)
        || g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED))
        return Failure::Locked;
    log(u"Keyring: %1"_s.arg(QString::fromUtf8(error->message)));
    return Failure::Failed;
}

/// A restarted keyring does not know the session with its predecessor, so a failed call is repeated once over a new
/// session.
std::optional<Failure> failureIn(GCancellable* cancellable, const std::function<void(GError**)>& attempt)
{
    std::optional<Failure> failure;
    for (int i = 0; i < 2; ++i) {
        GError* error = nullptr;
        attempt(&error);
        if (!error)
            return std::nullopt;
        failure = failureOf(error);
        g_error_free(error);
        if (failure == Failure::Locked || g_cancellable_is_cancelled(cancellable))
            return failure;
        secret_service_disconnect();
    }
    return failure;
}

/// Whether the default collection is unlocked, after asking the user if `unlock` says so, which it then no longer does.
/// A locked one hides its content; one that does not exist yet counts as unlocked.
bool isUnlocked(Unlock& unlock, GCancellable* cancellable, GError** error)
{
    const std::shared_ptr<SecretService> keyring(
        secret_service_get_sync(SECRET_SERVICE_NONE, cancellable, error), [](auto* found) { g_clear_object(&found); });
    if (!keyring)
        return false;
    const std::shared_ptr<SecretCollection> collection(
        secret_collection_for_alias_sync(
            keyring.get(), SECRET_COLLECTION_DEFAULT, SECRET_COLLECTION_NONE, cancellable, error),
        [](auto* found) { g_clear_object(&found); });
    if (!collection)
        return !*error;
    if (!secret_collection_get_locked(collection.get()))
        return true;
    if (std::exchange(unlock, Unlock::Never) == Unlock::Never)
        return false;
    GList* const locked = g_list_append(nullptr, collection.get());
    const bool unlocked = secret_service_unlock_sync(keyring.get(), locked, cancellable, nullptr, error) > 0;
    g_list_free(locked);
    return unlocked;
}

std::optional<Failure> failureToUnlock(Unlock unlock, GCancellable* cancellable)
{
    bool unlocked = false;
    const auto failure
        = failureIn(cancellable, [&](GError** error) { unlocked = isUnlocked(unlock, cancellable, error); });
    return failure || unlocked ? failure : Failure::Locked;
}

std::optional<Failure> store(
    const QByteArray& account, const QByteArray& value, Unlock unlock, GCancellable* cancellable)
{
    if (const auto failure = failureToUnlock(unlock, cancellable))
        return failure;
    return failureIn(cancellable, [&](GError** error) {
        secret_password_store_sync(schema(), SECRET_COLLECTION_DEFAULT,
            (QByteArray(service) + " / " + account).constData(), value.constData(), cancellable, error, "service",
            service, "account", account.constData(), nullptr);
    });
}

std::optional<Failure> clear(const QByteArray& account, Unlock unlock, GCancellable* cancellable)
{
    if (const auto failure = failureToUnlock(unlock, cancellable))
        return failure;
    return failureIn(cancellable, [&](GError** error) {
        secret_password_clear_sync(
            schema(), cancellable, error, "service", service, "account", account.constData(), nullptr);
    });
}

/// False if the item is locked.
bool addSecret(SecretRetrievable* item, Keyring::Secrets& secrets, GCancellable* cancellable, GError** error)
{
    if (SECRET_IS_ITEM(item) && secret_item_get_locked(SECRET_ITEM(item)))
        return false;
    SecretValue* const value = secret_retrievable_retrieve_secret_sync(item, cancellable, error);
    if (!value)
        return true;
    GHashTable* const attributes = secret_retrievable_get_attributes(item);
    const auto* const account = static_cast<const char*>(g_hash_table_lookup(attributes, "account"));
    gsize length = 0;
    const gchar* const text = secret_value_get(value, &length);
    if (account)
        secrets.insert(QString::fromUtf8(account), QString::fromUtf8(text, qsizetype(length)));
    g_hash_table_unref(attributes);
    secret_value_unref(value);
    return true;
}

Outcome readSecrets(Unlock unlock, GCancellable* cancellable)
{
    if (const auto failure = failureToUnlock(unlock, cancellable))
        return std::unexpected(*failure);
    const int flags = SECRET_SEARCH_ALL | SECRET_SEARCH_LOAD_SECRETS
        | (unlock == Unlock::Ask ? int(SECRET_SEARCH_UNLOCK) : int(SECRET_SEARCH_NONE));
    Keyring::Secrets secrets;
    bool allUnlocked = true;
    const auto failure = failureIn(cancellable, [&](GError** error) {
        secrets.clear();
        GList* const found = secret_password_search_sync(
            schema(), SecretSearchFlags(flags), cancellable, error, "service", service, nullptr);
        for (GList* each = found; each && !*error; each = each->next)
            allUnlocked = addSecret(SECRET_RETRIEVABLE(each->data), secrets, cancellable, error) && allUnlocked;
        g_list_free_full(found, g_object_unref);
    });
    if (failure)
        return std::unexpected(*failure);
    return allUnlocked ? Outcome(secrets) : std::unexpected(Failure::Locked);
}

/// The session bus that the library will use, set not to exit this process when the bus closes.
std::shared_ptr<GDBusConnection> sessionBus(GCancellable* cancellable)
{
    GDBusConnection* const bus = hasSessionBus() ? g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, nullptr) : nullptr;
    if (!bus)
        return nullptr;
    g_dbus_connection_set_exit_on_close(bus, FALSE);
    return { bus, g_object_unref };
}

}

struct DesktopKeyring::Worker {
    using Job = std::function<std::function<void()>(GCancellable*, bool hasBus)>; ///< returns the callback

    static void run(std::shared_ptr<Worker> worker)
    {
        while (const Job job = worker->next()) {
            const auto bus = sessionBus(worker->cancellable.get());
            const auto tell = job(worker->cancellable.get(), bus != nullptr);
            const std::lock_guard lock(worker->mutex);
            if (!worker->ended)
                QMetaObject::invokeMethod(worker->home, tell, Qt::QueuedConnection);
        }
    }

    /// Waits for the next job; none at the end.
    Job next()
    {
        std::unique_lock lock(mutex);
        wakeUp.wait(lock, [this] { return ended || !jobs.empty(); });
        if (ended)
            return {};
        Job job = std::move(jobs.front());
        jobs.pop_front();
        return job;
    }

    void add(Job job)
    {
        const std::lock_guard lock(mutex);
        jobs.push_back(std::move(job));
        wakeUp.notify_one();
    }

    const std::shared_ptr<GCancellable> cancellable { g_cancellable_new(), g_object_unref };
    QObject* const home = new QObject; ///< deleted at the end, with pending calls
    std::mutex mutex;
    std::condition_variable wakeUp;
    std::deque<Job> jobs;
    bool ended = false;
};

DesktopKeyring::DesktopKeyring()
    : m_worker(std::make_shared<Worker>())
{
    // Detached, since a service that hangs must not block the exit.
    std::thread(Worker::run, m_worker).detach();
}

DesktopKeyring::~DesktopKeyring()
{
    const std::lock_guard lock(m_worker->mutex);
    m_worker->ended = true;
    delete m_worker->home;
    g_cancellable_cancel(m_worker->cancellable.get());
    m_worker->wakeUp.notify_one();
}

void DesktopKeyring::readAll(Unlock unlock, Read read)
{
    m_worker->add([unlock, read = std::move(read)](GCancellable* cancellable, bool hasBus) {
        const Outcome outcome = hasBus ? readSecrets(unlock, cancellable) : std::unexpected(Failure::Absent);
        return [read, outcome] {
            read(outcome);
        };
    });
}

void DesktopKeyring::write(const QString& account, const QString& value, Unlock unlock, Done done)
{
    m_worker->add([account = account.toUtf8(), value = value.toUtf8(), unlock, done = std::move(done)](
                      GCancellable* cancellable, bool hasBus) {
        const auto failure = hasBus ? store(account, value, unlock, cancellable) : Failure::Absent;
        return [done, failure] {
            done(failure);
        };
    });
}

void DesktopKeyring::erase(const QString& account, Unlock unlock, Done done)
{
    m_worker->add([account = account.toUtf8(), unlock, done = std::move(done)](GCancellable* cancellable, bool hasBus) {
        const auto failure = hasBus ? clear(account, unlock, cancellable) : Failure::Absent;
        return [done, failure] {
            done(failure);
        };
    });
}

namespace {

class NoKeyring final : public Keyring {
public:
    void readAll(Unlock, Read read) override { read(std::unexpected(Failure::Absent)); }
    void write(const QString&, const QString&, Unlock, Done done) override { done(Failure::Absent); }
    void erase(const QString&, Unlock, Done done) override { done(Failure::Absent); }
};

}

std::unique_ptr<Keyring> makeKeyring()
{
    if (qEnvironmentVariable("CORVANE_SECRETS") == "file"_L1)
        return std::make_unique<NoKeyring>();
    return std::make_unique<DesktopKeyring>();
}

}
