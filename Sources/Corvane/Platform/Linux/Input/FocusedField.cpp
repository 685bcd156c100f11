#include "Platform/Linux/Input/FocusedField.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Platform/Linux/Bus/BusObject.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDeadlineTimer>

namespace corvane {

namespace {

constexpr int searchMs = 500;
constexpr int insertMs = 500;
constexpr int answerMs = 150;
constexpr int deepest = 60;

const QString accessible = u"org.a11y.atspi.Accessible"_s;
const QString textInterface = u"org.a11y.atspi.Text"_s;
const QString editableText = u"org.a11y.atspi.EditableText"_s;

// Constants of the accessibility protocol.
constexpr quint64 active = 1ULL << 1;
constexpr quint64 focused = 1ULL << 12;
constexpr quint64 showing = 1ULL << 25;
constexpr uint passwordRole = 40;

struct Node {
    QString service;
    QString path;
};

/// A temporary connection to the accessibility bus.
class Accessibility {
public:
    Accessibility(const QDBusConnection& session, int milliseconds)
        : m_name(uuidText())
        , m_deadline(milliseconds)
        , m_bus(session)
    {
        const BusObject launcher { u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus"_s };
        QDBusMessage call = launcher.method(u"GetAddress"_s);
        call.setAutoStartService(false);
        const QString address = firstValue(session.call(call, QDBus::Block, answerMs)).toString();
        if (!address.isEmpty())
            m_bus = QDBusConnection::connectToBus(address, m_name);
        m_isThere = !address.isEmpty() && m_bus.isConnected();
    }
    ~Accessibility() { QDBusConnection::disconnectFromBus(m_name); }
    Accessibility(const Accessibility&) = delete;
    Accessibility& operator=(const Accessibility&) = delete;

    bool isThere() const { return m_isThere && !m_deadline.hasExpired(); }

    QDBusMessage call(
        const Node& node, const QString& interface, const QString& method, const QVariantList& arguments = {}) const
    {
        if (!isThere())
            return {};
        const int limit = int(std::min<qint64>(answerMs, m_deadline.remainingTime()));
        return m_bus.call(
            BusObject { node.service, node.path, interface }.method(method, arguments), QDBus::Block, limit);
    }

    QVariant property(const Node& node, const QString& interface, const QString& name) const
    {
        return firstValue(call(node, u"org.freedesktop.DBus.Properties"_s, u"Get"_s, { interface, name }));
    }

    quint64 states(const Node& node) const
    {
        const auto words = qdbus_cast<QList<uint>>(firstValue(call(node, accessible, u"GetState"_s)));
        return words.size() == 2 ? quint64(words[1]) << 32 | words[0] : 0;
    }

    QList<Node> children(const Node& node) const
    {
        const QVariant value = firstValue(call(node, accessible, u"GetChildren"_s));
        if (value.metaType() != QMetaType::fromType<QDBusArgument>())
            return {};
        const auto argument = value.value<QDBusArgument>();
        if (argument.currentSignature() != u"a(so)")
            return {};
        QList<Node> nodes;
        argument.beginArray();
        while (!argument.atEnd()) {
            Node child;
            QDBusObjectPath path;
            argument.beginStructure();
            argument >> child.service >> path;
            argument.endStructure();
            child.path = path.path();
            nodes.append(child);
        }
        argument.endArray();
        return nodes;
    }

private:
    const QString m_name;
    const QDeadlineTimer m_deadline;
    QDBusConnection m_bus;
    bool m_isThere = false;
};

/// The innermost focused object: containers of a focused field may report focus, too.
std::optional<Node> focusedUnder(const Accessibility& bus, const Node& node, quint64 states, int depth)
{
    if (depth < deepest) {
        for (const Node& child : bus.children(node)) {
            const quint64 own = bus.states(child);
            if (!(own & (showing | focused)))
                continue;
            if (const auto found = focusedUnder(bus, child, own, depth + 1))
                return found;
        }
    }
    return states & focused ? std::optional(node) : std::nullopt;
}

/// Programs disagree whether lengths are in characters or in bytes of UTF-8.
int lengthFor(const QString& toolkit, const QString& text)
{
    return int(toolkit.compare(u"qt", Qt::CaseInsensitive) == 0 ? text.size() : text.toUtf8().size());
}

}

std::optional<FocusedField> findFocusedField(const QDBusConnection& session)
{
    const Accessibility bus(session, searchMs);
    if (!bus.isThere())
        return std::nullopt;
    const Node programs { u"org.a11y.atspi.Registry"_s, u"/org/a11y/atspi/accessible/root"_s };
    for (const Node& program : bus.children(programs)) {
        for (const Node& window : bus.children(program)) {
            const quint64 states = bus.states(window);
            const auto found = states & active ? focusedUnder(bus, window, states, 0) : std::nullopt;
            if (!found)
                continue;
            const QStringList interfaces = firstValue(bus.call(*found, accessible, u"GetInterfaces"_s)).toStringList();
            const uint role = firstValue(bus.call(*found, accessible, u"GetRole"_s)).toUInt();
            return FocusedField { found->service, found->path, role == passwordRole,
                interfaces.contains(editableText) };
        }
    }
    return std::nullopt;
}

bool insertInto(const QDBusConnection& session, const FocusedField& field, const QString& text)
{
    const Accessibility bus(session, insertMs);
    const Node node { field.service, field.path };
    const Node program { field.service, u"/org/a11y/atspi/accessible/root"_s };
    const QString toolkit = bus.property(program, u"org.a11y.atspi.Application"_s, u"ToolkitName"_s).toString();
    bool isThere = false;
    const int caret = bus.property(node, textInterface, u"CaretOffset"_s).toInt(&isThere);
    if (!isThere || caret < 0)
        return false;
    const bool isInserted
        = firstValue(bus.call(node, editableText, u"InsertText"_s, { caret, text, lengthFor(toolkit, text) })).toBool();
    // Some programs leave the cursor before the inserted text.
    const int after = caret + int(text.toUcs4().size());
    if (isInserted && bus.property(node, textInterface, u"CaretOffset"_s).toInt() == caret)
        bus.call(node, textInterface, u"SetCaretOffset"_s, { after });
    return isInserted;
}

}
