#include "Platform/HotKey.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Platform/GlobalShortcuts.h"

#include <QKeySequence>

namespace corvane {

namespace {

using Kind = GlobalShortcutState::Kind;

bool isModifier(int key)
{
    return key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock;
}

}

HotKey::HotKey(const Definition& definition, GlobalShortcuts* shortcuts, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_definition(definition)
    , m_shortcuts(shortcuts)
    , m_defaults(defaults)
{
    if (!shortcuts)
        return;
    const auto forward = [this](auto signal, void (HotKey::*own)()) {
        connect(m_shortcuts, signal, this, [this, own](const QString& id) {
            if (id == m_definition.id)
                (this->*own)();
        });
    };
    forward(&GlobalShortcuts::pressed, &HotKey::pressed);
    forward(&GlobalShortcuts::released, &HotKey::released);
    forward(&GlobalShortcuts::stateChanged, &HotKey::changed);
}

HotKey::~HotKey()
{
    unbind();
}

QString HotKey::defaultsKey() const
{
    return u"Corvane.keys."_s + m_definition.id;
}

QStringList HotKey::wished() const
{
    const auto chosen = m_defaults.text(defaultsKey());
    return chosen ? QStringList { *chosen } : m_definition.keys;
}

QString HotKey::keys() const
{
    const QString inForce = m_shortcuts ? m_shortcuts->state(m_definition.id).keys : QString();
    return inForce.isEmpty() ? wished().value(0) : inForce;
}

QString HotKey::hint() const
{
    const QString otherWay = u"In the keyboard settings of the desktop, bind a key to: "_s + m_definition.command;
    switch (m_shortcuts ? m_shortcuts->state(m_definition.id).kind : Kind::Unavailable) {
    case Kind::Bound:
        return u"Works in every program."_s;
    case Kind::Waiting:
        return u"The desktop manages this shortcut."_s;
    case Kind::Taken:
        return u"Another program holds %1. Choose another key."_s.arg(keys());
    case Kind::Unavailable:
        return u"This desktop has no global shortcuts for programs. "_s + otherWay;
    case Kind::Unbound:
        break;
    }
    return u"Off"_s;
}

bool HotKey::isWrong() const
{
    const Kind kind = m_shortcuts ? m_shortcuts->state(m_definition.id).kind : Kind::Unavailable;
    return kind == Kind::Taken || kind == Kind::Unavailable;
}

void HotKey::bind()
{
    if (m_shortcuts && !std::exchange(m_isAsked, true))
        m_shortcuts->bind({ m_definition.id, m_definition.label, wished() });
}

void HotKey::unbind()
{
    if (m_shortcuts && std::exchange(m_isAsked, false))
        m_shortcuts->release(m_definition.id);
}

bool HotKey::isBound() const
{
    return m_shortcuts && m_shortcuts->state(m_definition.id).kind == Kind::Bound;
}

QString HotKey::bindingText() const
{
    return u"install=%1 register=%2 (%3)"_s.arg(int(m_shortcuts != nullptr)).arg(int(isBound())).arg(keys());
}

bool HotKey::choose(int key, int modifiers)
{
    const Qt::KeyboardModifiers held = Qt::KeyboardModifiers(modifiers)
        & (Qt::ControlModifier | Qt::AltModifier | Qt::ShiftModifier | Qt::MetaModifier);
    const bool isFunctionKey = key >= Qt::Key_F1 && key <= Qt::Key_F35;
    if (isModifier(key) || (!isFunctionKey && !(held & ~Qt::KeyboardModifiers(Qt::ShiftModifier))))
        return false;
    m_defaults.setText(
        defaultsKey(), QKeySequence(QKeyCombination(held, Qt::Key(key))).toString(QKeySequence::PortableText));
    if (m_isAsked) {
        unbind();
        bind();
    }
    Q_EMIT changed();
    return true;
}

}
