#include "Profile.h"

#include "Hosted.h"

#include "Foundation/Literals.h"
#include "Support/Places.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QProcessEnvironment>
#include <QThread>

namespace corvane::torture {

const QString account = u"torture"_s;

namespace {

constexpr int endMs = 30'000;
const QString accountsFile = uR"([{"id":"6E1C0B52-7D0A-4B7E-9C52-3A1F5D8E2B01","name":"Torture","slug":"torture",
    "mcpEnabled":false,"mcpPort":8790,"autoStart":true,"channelRaw":"WHATSAPP"}])"_s;

QString place()
{
    const QString memory = u"/dev/shm"_s;
    return (QFileInfo(memory).isWritable() ? memory : QDir::tempPath()) + u"/corvane-torture-XXXXXX"_s;
}

void write(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("%s cannot be written", qPrintable(path));
}

}

Profile::Profile(const QString& program)
    : m_binary(program)
    , m_folder(place())
    , m_paths { file(u"home"_s), file(u"share/Corvane"_s), file(u"config/Corvane/defaults.ini"_s),
        file(u"resources"_s) }
    , m_books(file(u"books"_s))
    , m_defaults(m_paths.defaultsFile)
{
    for (const QString& folder : { u"home"_s, u"books"_s, u"run"_s, u"config/Corvane"_s })
        QDir().mkpath(file(folder));
    write(m_paths.applicationSupport + u"/accounts.json"_s, accountsFile.toUtf8());
    write(m_paths.resources + u"/engine/src/main.ts"_s, "// The engine is played.\n");
    QFile::link(QStringLiteral(CORVANE_SOURCE "/local-schema"), m_paths.resources + u"/local-schema"_s);
}

Profile::~Profile()
{
    kill();
}

QProcessEnvironment Profile::environment() const
{
    QProcessEnvironment result = QProcessEnvironment::systemEnvironment();
    for (const QString& name : { u"DBUS_SESSION_BUS_ADDRESS"_s, u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s })
        result.remove(name);
    const QMap<QString, QString> own { { u"HOME"_s, m_paths.home }, { u"XDG_DATA_HOME"_s, file(u"share"_s) },
        { u"XDG_CONFIG_HOME"_s, file(u"config"_s) }, { u"XDG_RUNTIME_DIR"_s, file(u"run"_s) },
        { u"PULSE_SERVER"_s, u"unix:/nowhere"_s }, { u"CORVANE_SECRETS"_s, u"file"_s },
        { u"CORVANE_RESOURCES"_s, m_paths.resources },
        { u"CORVANE_NODE"_s, QCoreApplication::applicationDirPath() + u"/torture-engine"_s },
        { u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s } };
    for (auto each = own.begin(); each != own.end(); ++each)
        result.insert(each.key(), each.value());
    return result;
}

void Profile::start(const EngineOrders& orders, Deciding deciding)
{
    QProcessEnvironment with = environment();
    giveOrders(with, file(u"books"_s), orders);
    if (deciding == Deciding::Person)
        decideOnDrafts(with, file(u"books"_s));
    m_earlierLives = m_books.lives();
    m_program.start({ m_binary, { u"--headless"_s }, with.toStringList(), file(u"log"_s) });
}

bool Profile::stop()
{
    const bool began = waitFor([this] { return m_books.lives() > m_earlierLives; });
    m_program.terminate();
    const bool ended = began && m_program.waitForEnd(endMs);
    kill();
    return ended && m_program.exitCode() == 0;
}

std::unique_ptr<Child> Profile::command(const QStringList& arguments)
{
    auto child = std::make_unique<Child>();
    child->start({ m_binary, arguments, environment().toStringList(), file(u"command.log"_s) });
    return child;
}

int Profile::run(const QStringList& arguments)
{
    const auto child = command(arguments);
    return child->waitForEnd(10 * endMs) ? child->exitCode() : -1;
}

std::unique_ptr<LocalDB> Profile::open()
{
    return std::make_unique<LocalDB>(m_paths.database(), LocalDB::SchemaFolders { m_paths.resources, m_paths.home },
        m_scheduler, m_defaults, m_centre);
}

Profile::Told Profile::told(LocalDB& db, qint64 upTo) const
{
    return db
        .firstRow(u"SELECT COUNT(*), COUNT(DISTINCT provider_msg_id) FROM unified_message "
                  "WHERE provider_msg_id LIKE 'm%' AND CAST(SUBSTR(provider_msg_id, 2) AS INTEGER) <= ?;"_s,
            { upTo }, [](const SqlRow& row) { return Told { row.integer(0), row.integer(1) }; })
        .value_or(Told());
}

bool waitFor(const std::function<bool()>& condition, int seconds)
{
    const QDeadlineTimer limit(std::chrono::seconds { seconds });
    while (!condition()) {
        if (limit.hasExpired())
            return false;
        pause(2);
    }
    return true;
}

void pause(int milliseconds)
{
    QThread::msleep(static_cast<unsigned long>(milliseconds));
}

}
