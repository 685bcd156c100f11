#include "Platform/Keychain.h"

#include "Foundation/Literals.h"

#include <QPointer>
#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds firstPause { 5'000 };
constexpr Milliseconds longestPause { 60'000 };
constexpr Milliseconds keyringsTime { 2'000 }; // for the keyring to store a value, before the file is used

using Where = SecretPlace::Where;

}

Keychain::Keychain(Keyring& keyring, const QString& filePath, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_keyring(keyring)
    , m_file(filePath)
    , m_scheduler(scheduler)
    , m_places(m_file.read())
    , m_pause(firstPause)
{
    ask(Keyring::Unlock::Ask);
}

Keychain::~Keychain()
{
    if (m_saving)
        save();
}

std::optional<QString> Keychain::get(const QString& account) const
{
    const auto place = m_places.constFind(account);
    if (place != m_places.cend() && place->where == Where::File)
        return place->value.trimmed();
    if (place != m_places.cend() && place->where == Where::Nowhere)
        return std::nullopt;
    const auto value = m_values.constFind(account);
    return value == m_values.cend() ? std::nullopt : std::optional(value->trimmed());
}

bool Keychain::isAwaited(const QString& account) const
{
    const auto place = m_places.constFind(account);
    const bool inKeyring = place != m_places.cend() && place->where == Where::Keyring;
    if (m_isRead || (place != m_places.cend() && !inKeyring))
        return false;
    return inKeyring || m_state != State::Absent;
}

bool Keychain::set(const QString& value, const QString& account)
{
    m_places.insert(account, { Where::File, value });
    if (m_state == State::Answered) {
        // If the keyring stores it within a moment, it never needs to be in the file.
        m_saving = m_scheduler.after(keyringsTime, [this] { save(); });
        hand(account, Keyring::Unlock::Ask);
        return true;
    }
    const bool saved = save();
    ask(Keyring::Unlock::Ask);
    return saved;
}

void Keychain::remove(const QString& account)
{
    m_places.insert(account, {});
    save();
    if (m_state == State::Answered)
        hand(account, Keyring::Unlock::Ask);
    else
        ask(Keyring::Unlock::Ask);
}

void Keychain::unlock()
{
    ask(Keyring::Unlock::Ask);
}

QString Keychain::description() const
{
    switch (m_state) {
    case State::Asking:
        return u"the desktop's keyring, which has not answered yet"_s;
    case State::Answered:
        return u"the desktop's keyring"_s;
    case State::Locked:
        return u"the desktop's keyring, which is locked; new ones in a private file (%1) until then"_s.arg(
            m_file.path());
    case State::Failed:
        return u"the desktop's keyring, which does not answer; new ones in a private file (%1) until then"_s.arg(
            m_file.path());
    case State::Absent:
        return u"a private file (%1)"_s.arg(m_file.path());
    }
    Q_UNREACHABLE();
}

void Keychain::ask(Keyring::Unlock unlock)
{
    if (m_state == State::Asking)
        return;
    m_asking.reset();
    if (unlock == Keyring::Unlock::Ask)
        m_pause = firstPause;
    m_state = State::Asking;
    m_keyring.readAll(unlock, [self = QPointer(this), unlock](const auto& answer) {
        if (!self)
            return;
        if (answer)
            self->take(*answer, unlock);
        else
            self->fail(answer.error());
    });
}

void Keychain::take(const Keyring::Secrets& secrets, Keyring::Unlock unlock)
{
    m_values = secrets;
    m_isRead = true;
    const SecretPlaces before = m_places;
    m_places.removeIf([&](const auto& each) { return each->where == Where::Keyring && !secrets.contains(each.key()); });
    for (const QString& account : secrets.keys()) {
        if (!m_places.contains(account))
            m_places.insert(account, { Where::Keyring, {} });
    }
    if (m_places != before)
        save();
    setState(State::Answered);
    for (const QString& account : m_places.keys()) {
        if (m_places.value(account).where != Where::Keyring)
            hand(account, unlock);
    }
}

void Keychain::fail(Keyring::Failure failure)
{
    switch (failure) {
    case Keyring::Failure::Absent:
        return setState(State::Absent);
    case Keyring::Failure::Locked:
        return setState(State::Locked);
    case Keyring::Failure::Failed:
        return setState(State::Failed);
    }
}

void Keychain::setState(State state)
{
    m_state = state;
    askLater();
    Q_EMIT changed();
}

void Keychain::hand(const QString& account, Keyring::Unlock unlock)
{
    const SecretPlace place = m_places.value(account);
    const auto done = [self = QPointer(this), account, place](const std::optional<Keyring::Failure>& failure) {
        if (!self)
            return;
        --self->m_handing;
        self->handed(account, place, failure);
    };
    // If the keyring is locked, the first call asks the user for all of them.
    const auto mayAsk = m_handing++ > 0 ? Keyring::Unlock::Never : unlock;
    if (place.where == Where::File)
        m_keyring.write(account, place.value, mayAsk, done);
    else
        m_keyring.erase(account, mayAsk, done);
}

void Keychain::handed(const QString& account, const SecretPlace& place, const std::optional<Keyring::Failure>& failure)
{
    if (m_places.value(account) != place)
        return; // a newer value is pending, with an answer of its own
    if (failure) {
        save();
        return fail(*failure);
    }
    m_pause = firstPause;
    if (place.where == Where::File) {
        m_places.insert(account, { Where::Keyring, {} });
        m_values.insert(account, place.value);
    } else {
        m_places.remove(account);
        m_values.remove(account);
    }
    save();
}

bool Keychain::isUnsettled() const
{
    return m_state == State::Locked || m_state == State::Failed || (m_state == State::Absent && !m_places.isEmpty());
}

void Keychain::askLater()
{
    m_asking.reset();
    if (!isUnsettled())
        return;
    m_asking = m_scheduler.after(m_pause, [this] { ask(Keyring::Unlock::Never); });
    m_pause = std::min(m_pause * 2, longestPause);
}

bool Keychain::save()
{
    m_saving.reset();
    return m_file.write(m_places);
}

}
