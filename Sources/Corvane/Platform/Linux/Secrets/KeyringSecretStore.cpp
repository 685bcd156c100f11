#include "Platform/Linux/Secrets/KeyringSecretStore.h"

#include "Foundation/Log.h"

#include <future>
#include <libsecret/secret.h>
#include <thread>

namespace corvane {

namespace {

using Cancellable = std::shared_ptr<GCancellable>;

/// A secret's name, in the bytes that the service takes.
struct Key {
    QByteArray service;
    QByteArray account;
};

const SecretSchema* schema()
{
    static const SecretSchema* const made = secret_schema_new("com.nimb.corvane", SECRET_SCHEMA_NONE, "service",
        SECRET_SCHEMA_ATTRIBUTE_STRING, "account", SECRET_SCHEMA_ATTRIBUTE_STRING, nullptr);
    return made;
}

void logFailure(const QString& message)
{
    log(QStringLiteral("SecretStore: the keyring failed: %1").arg(message));
}

/// A keyring that was restarted knows nothing of the session with its predecessor, so a failure is answered by one more
/// attempt over a new session. False, and a log line, where that fails too.
template <typename Attempt> bool succeeds(GCancellable* cancellable, const Attempt& attempt)
{
    QString message;
    for (int i = 0; i < 2; ++i) {
        GError* error = nullptr;
        attempt(&error);
        if (!error)
            return true;
        message = QString::fromUtf8(error->message);
        g_error_free(error);
        // A call that was given up must not take the session from the one that came after it.
        if (g_cancellable_is_cancelled(cancellable))
            return false;
        secret_service_disconnect();
    }
    logFailure(message);
    return false;
}

bool store(const Key& key, const QByteArray& value, GCancellable* cancellable)
{
    return succeeds(cancellable, [&](GError** error) {
        secret_password_store_sync(schema(), SECRET_COLLECTION_DEFAULT, (key.service + " / " + key.account).constData(),
            value.constData(), cancellable, error, "service", key.service.constData(), "account",
            key.account.constData(), nullptr);
    });
}

std::optional<QString> lookUp(const Key& key, GCancellable* cancellable)
{
    std::optional<QString> value;
    succeeds(cancellable, [&](GError** error) {
        gchar* found = secret_password_lookup_sync(schema(), cancellable, error, "service", key.service.constData(),
            "account", key.account.constData(), nullptr);
        if (found)
            value = QString::fromUtf8(found);
        secret_password_free(found);
    });
    return value;
}

bool clear(const Key& key, GCancellable* cancellable)
{
    return succeeds(cancellable, [&](GError** error) {
        secret_password_clear_sync(schema(), cancellable, error, "service", key.service.constData(), "account",
            key.account.constData(), nullptr);
    });
}

/// The session bus that the keyring's library will use, kept from ending this process when the bus ends.
std::shared_ptr<GDBusConnection> sessionBus(GCancellable* cancellable)
{
    GDBusConnection* const bus = g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable, nullptr);
    if (!bus)
        return nullptr;
    g_dbus_connection_set_exit_on_close(bus, FALSE);
    return { bus, g_object_unref };
}

/// What the work gives, or a default value where that takes longer than the limit.
template <typename Work> auto within(std::chrono::milliseconds limit, Work work) -> decltype(work(nullptr))
{
    const Cancellable cancellable(g_cancellable_new(), g_object_unref);
    std::packaged_task<decltype(work(nullptr))()> task([work = std::move(work), cancellable] {
        const auto bus = sessionBus(cancellable.get());
        return work(cancellable.get());
    });
    auto result = task.get_future();
    std::thread thread(std::move(task));
    if (result.wait_for(limit) == std::future_status::ready) {
        thread.join();
        return result.get();
    }
    g_cancellable_cancel(cancellable.get());
    thread.detach();
    logFailure(QStringLiteral("no answer in time"));
    return {};
}

Key keyOf(const QString& service, const QString& account)
{
    return { service.toUtf8(), account.toUtf8() };
}

}

KeyringSecretStore::KeyringSecretStore(std::chrono::milliseconds limit)
    : m_limit(limit)
{
}

bool KeyringSecretStore::answers()
{
    return within(m_limit, [](GCancellable* cancellable) {
        const Key key { "com.nimb.corvane.probe", "probe" };
        return store(key, "here", cancellable) && lookUp(key, cancellable) == QStringLiteral("here")
            && clear(key, cancellable);
    });
}

std::optional<QString> KeyringSecretStore::get(const QString& service, const QString& account)
{
    return within(
        m_limit, [key = keyOf(service, account)](GCancellable* cancellable) { return lookUp(key, cancellable); });
}

bool KeyringSecretStore::set(const QString& service, const QString& account, const QString& value)
{
    return within(m_limit, [key = keyOf(service, account), bytes = value.toUtf8()](GCancellable* cancellable) {
        return store(key, bytes, cancellable);
    });
}

void KeyringSecretStore::remove(const QString& service, const QString& account)
{
    within(m_limit, [key = keyOf(service, account)](GCancellable* cancellable) { return clear(key, cancellable); });
}

QString KeyringSecretStore::description() const
{
    return QStringLiteral("the desktop's keyring");
}

}
