#include "Platform/Linux/Bus/BusSingleInstance.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/AppPaths.h"
#include "Platform/ApplicationId.h"
#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Services.h"

#include <QCryptographicHash>
#include <QDBusError>
#include <QDeadlineTimer>
#include <QDir>
#include <QJsonArray>
#include <QLocalSocket>
#include <QThread>
#include <cerrno>
#include <pwd.h>
#include <sys/file.h>
#include <unistd.h>

namespace corvane {

namespace {

/// How long a start waits for a running program that is still starting, and then for its answer.
constexpr int comingUpMs = 2000;
constexpr int answerMs = 1500;
constexpr int endingMs = 15'000; ///< how long a program without a window may take to end
constexpr int betweenTriesMs = 50;
constexpr qint64 longestRequest = 65536;

const QString objectInterface = u"org.freedesktop.Application"_s;
const QString tokenKey = u"activation-token"_s;
const QByteArray taken = "taken\n"_ba;
const QByteArray headless = "headless\n"_ba;
const QStringList giveWay { u"--give-way"_s };

QString usualFolder()
{
    const passwd* account = ::getpwuid(::getuid());
    return account == nullptr ? QString() : QFile::decodeName(account->pw_dir) + u"/.local/share/Corvane"_s;
}

/// A token that allows the running program to raise its window, on desktops that require one.
QString activationToken()
{
    return qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
}

}

QString instanceName(const QString& applicationSupport)
{
    if (applicationSupport == usualFolder())
        return applicationId;
    const QByteArray hash = QCryptographicHash::hash(QFile::encodeName(applicationSupport), QCryptographicHash::Sha256);
    return applicationId + u".at"_s + QString::fromLatin1(hash.toHex().first(16));
}

void ApplicationObject::Activate(const QVariantMap& platformData)
{
    Open({}, platformData);
}

void ApplicationObject::Open(const QStringList& uris, const QVariantMap& platformData)
{
    Q_EMIT called(uris, platformData.value(tokenKey).toString());
}

void ApplicationObject::ActivateAction(const QString& action, const QVariantList&, const QVariantMap& platformData)
{
    Open({ action }, platformData);
}

BusSingleInstance::BusSingleInstance(const QString& applicationSupport, const QDBusConnection& bus, StartFor purpose)
    : m_folder(applicationSupport)
    , m_socketPath(applicationSupport + u"/instance.socket"_s)
    , m_name(instanceName(applicationSupport))
    , m_bus(bus)
    , m_purpose(purpose)
    , m_lock(applicationSupport + u"/instance.lock"_s)
    , m_lumo(bus, &m_object)
{
    connect(&m_object, &ApplicationObject::called, this, &BusSingleInstance::receive);
    connect(&m_server, &QLocalServer::newConnection, this, &BusSingleInstance::onConnection);
}

BusSingleInstance::~BusSingleInstance()
{
    if (m_lock.isOpen() && m_bus.isConnected())
        m_bus.unregisterService(m_name);
}

bool BusSingleInstance::claim(const QStringList& arguments)
{
    if (m_lock.isOpen())
        return true;
    QDeadlineTimer comingUp(comingUpMs);
    bool replaces = false;
    for (;;) {
        const Lock lock = takeLock();
        if (lock == Lock::Taken) {
            open();
            return true;
        }
        if (!replaces && lock == Lock::HeldByAnother && isToBeReplaced() && handOver(giveWay) == Delivery::Taken) {
            replaces = true;
            comingUp.setRemainingTime(endingMs);
        }
        if (replaces && !comingUp.hasExpired()) {
            QThread::msleep(betweenTriesMs);
            continue;
        }
        const Delivery delivery = handOver(arguments);
        if (delivery == Delivery::Taken)
            return false;
        if (delivery == Delivery::Unreachable && lock == Lock::Impossible) {
            open();
            return true;
        }
        if (delivery == Delivery::Unanswered || comingUp.hasExpired()) {
            // It may have crashed during the request.
            if (lock == Lock::HeldByAnother && takeLock() == Lock::Taken) {
                open();
                return true;
            }
            log(u"SingleInstance: Corvane already runs on %1 and does not answer"_s.arg(m_folder));
            return false;
        }
        QThread::msleep(betweenTriesMs);
    }
}

void BusSingleInstance::setAnswerer(Answerer answerer)
{
    m_lumo.answerer = std::move(answerer);
}

BusSingleInstance::Lock BusSingleInstance::takeLock()
{
    QDir().mkpath(m_folder);
    if (!m_lock.open(QIODevice::ReadWrite, QFile::ReadOwner | QFile::WriteOwner))
        return Lock::Impossible;
    if (::flock(m_lock.handle(), LOCK_EX | LOCK_NB) == 0) {
        m_lock.resize(0);
        m_lock.write(m_purpose == StartFor::Headless ? headless : QByteArray());
        m_lock.flush();
        return Lock::Taken;
    }
    const bool held = errno == EWOULDBLOCK;
    m_lock.close();
    return held ? Lock::HeldByAnother : Lock::Impossible;
}

bool BusSingleInstance::isToBeReplaced()
{
    QFile held(m_lock.fileName());
    return m_purpose == StartFor::Window && held.open(QIODevice::ReadOnly) && held.readLine() == headless;
}

BusSingleInstance::Delivery BusSingleInstance::handOver(const QStringList& arguments)
{
    const Delivery delivery = handOverOnBus(arguments);
    return delivery == Delivery::Unreachable ? handOverThroughSocket(arguments) : delivery;
}

BusSingleInstance::Delivery BusSingleInstance::handOverOnBus(const QStringList& arguments)
{
    if (!m_bus.isConnected())
        return Delivery::Unreachable;
    const BusObject running { m_name, instanceObjectPath, objectInterface };
    const QVariantMap platformData { { tokenKey, activationToken() } };
    QDBusMessage call = arguments.isEmpty() ? running.method(u"Activate"_s, { platformData })
                                            : running.method(u"Open"_s, { arguments, platformData });
    call.setAutoStartService(false);
    const QDBusMessage reply = m_bus.call(call, QDBus::Block, answerMs);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return Delivery::Taken;
    return QDBusError(reply).type() == QDBusError::NoReply ? Delivery::Unanswered : Delivery::Unreachable;
}

BusSingleInstance::Delivery BusSingleInstance::handOverThroughSocket(const QStringList& arguments)
{
    QLocalSocket socket;
    socket.connectToServer(m_socketPath);
    if (!socket.waitForConnected(answerMs))
        return Delivery::Unreachable;
    const QJsonObject request { { u"arguments"_s, QJsonArray::fromStringList(arguments) },
        { tokenKey, activationToken() } };
    socket.write(compactJson(request) + '\n');
    const QDeadlineTimer answer(answerMs);
    while (!socket.canReadLine() && socket.waitForReadyRead(int(answer.remainingTime()))) { }
    return socket.readLine() == taken ? Delivery::Taken : Delivery::Unanswered;
}

void BusSingleInstance::open()
{
    if (m_bus.isConnected()) {
        m_bus.registerObject(
            instanceObjectPath, &m_object, QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportAdaptors);
        if (!m_bus.registerService(m_name))
            log(u"SingleInstance: the bus name %1 is taken"_s.arg(m_name));
    }
    if (!m_lock.isOpen())
        return;
    // An existing socket is stale, since this process holds the lock.
    QLocalServer::removeServer(m_socketPath);
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    if (!m_server.listen(m_socketPath))
        log(u"SingleInstance: no socket: "_s + m_server.errorString());
}

void BusSingleInstance::onConnection()
{
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
            if (!socket->canReadLine()) {
                if (socket->bytesAvailable() >= longestRequest)
                    socket->abort();
                return;
            }
            const std::optional<QJsonObject> request = jsonObject(socket->readLine());
            if (!request) {
                socket->abort();
                return;
            }
            socket->write(taken);
            socket->disconnectFromServer();
            QStringList arguments;
            for (const QJsonValue& argument : request->value(u"arguments"_s).toArray())
                arguments.append(argument.toString());
            receive(arguments, request->value(tokenKey).toString());
        });
    }
}

void BusSingleInstance::receive(const QStringList& arguments, const QString& token)
{
    if (!token.isEmpty())
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
    // Raising a window may take long; the other program gets its answer first.
    const auto tell = [this, arguments] {
        if (arguments != giveWay)
            Q_EMIT activated(arguments);
        else if (m_purpose == StartFor::Headless)
            Q_EMIT replaced();
    };
    QMetaObject::invokeMethod(this, tell, Qt::QueuedConnection);
}

std::unique_ptr<SingleInstance> makeSingleInstance(const AppPaths& paths, StartFor purpose)
{
    return std::make_unique<BusSingleInstance>(paths.applicationSupport, QDBusConnection::sessionBus(), purpose);
}

}
