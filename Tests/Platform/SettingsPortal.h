#pragma once

#include "Foundation/Literals.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QObject>
#include <QVariantMap>

namespace corvane {

/// A fake settings portal on a private bus.
class SettingsPortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")
public:
    SettingsPortal(const QDBusConnection& bus, const QVariantMap& initialValues)
        : values(initialValues)
        , m_bus(bus)
    {
        m_bus.registerObject("/org/freedesktop/portal/desktop", this,
            QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportScriptableSignals);
        m_bus.registerService("org.freedesktop.portal.Desktop");
    }
    ~SettingsPortal() override { m_bus.unregisterService("org.freedesktop.portal.Desktop"); }

    void change(const QString& group, const QString& key, const QVariant& value)
    {
        values[group + u'/' + key] = value;
        Q_EMIT SettingChanged(group, key, QDBusVariant(value));
    }

    QVariantMap values; ///< by "group/key"

public Q_SLOTS:
    Q_SCRIPTABLE QDBusVariant Read(const QString& group, const QString& key)
    {
        const QVariant value = values.value(group + u'/' + key);
        if (!value.isValid())
            sendErrorReply("org.freedesktop.portal.Error.NotFound", "Requested setting not found");
        // Real portals wrap the value twice here.
        return QDBusVariant(QVariant::fromValue(QDBusVariant(value)));
    }

Q_SIGNALS:
    Q_SCRIPTABLE void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    QDBusConnection m_bus;
};

/// A fake file chooser portal that responds at once.
class FilePortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.FileChooser")
public:
    FilePortal(const QDBusConnection& bus, uint response, const QStringList& uris)
        : m_bus(bus)
        , m_response(response)
        , m_uris(uris)
    {
        m_bus.registerObject("/org/freedesktop/portal/desktop", this, QDBusConnection::ExportScriptableSlots);
        m_bus.registerService("org.freedesktop.portal.Desktop");
    }
    ~FilePortal() override { m_bus.unregisterService("org.freedesktop.portal.Desktop"); }

    QStringList asked;

public Q_SLOTS:
    Q_SCRIPTABLE QDBusObjectPath OpenFile(const QString&, const QString& title, const QVariantMap& options)
    {
        const QString sender = message().service().mid(1).replace('.', '_');
        const QString path
            = "/org/freedesktop/portal/desktop/request/" + sender + '/' + options["handle_token"].toString();
        auto response = QDBusMessage::createSignal(path, "org.freedesktop.portal.Request", "Response");
        response << m_response << QVariantMap { { "uris", m_uris } };
        asked.append(u"%1: %2%3"_s.arg(title, options["multiple"].toBool() ? "several " : "one ",
            options["directory"].toBool() ? "folder" : "file"));
        m_bus.send(response);
        return QDBusObjectPath(path);
    }

private:
    QDBusConnection m_bus;
    const uint m_response;
    const QStringList m_uris;
};

/// A fake dock that records the badges of programs.
class Dock final : public QObject {
    Q_OBJECT
public:
    explicit Dock(const QDBusConnection& bus)
        : m_bus(bus)
    {
        m_bus.connect(QString(), QString(), "com.canonical.Unity.LauncherEntry", "Update", this,
            SLOT(onUpdate(QString, QVariantMap)));
        m_bus.registerService("com.canonical.Unity");
    }
    ~Dock() override { m_bus.unregisterService("com.canonical.Unity"); }

    QStringList updates;

public Q_SLOTS:
    void onUpdate(const QString& application, const QVariantMap& properties)
    {
        const bool isInt64 = properties.value("count").metaType() == QMetaType::fromType<qlonglong>();
        updates.append(u"%1 %2 %3"_s.arg(application, isInt64 ? properties.value("count").toString() : "not an int64",
            properties.value("count-visible").toBool() ? "visible" : "hidden"));
    }

private:
    QDBusConnection m_bus;
};

}
