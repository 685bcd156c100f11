#include "CRM/ContactsBridge.h"

#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AddressBook.h"

#include <QPointer>

namespace corvane {

namespace {

constexpr qsizetype fewestDigits = 7;
constexpr qsizetype tailDigits = 9;

QString ending(const QString& digits)
{
    return digits.right(fewestDigits);
}

}

ContactsBridge::ContactsBridge(const AddressBook& book, BackgroundQueue& background, UserDefaults& defaults)
    : m_book(book)
    , m_background(background)
    , m_defaults(defaults)
{
}

void ContactsBridge::load(const std::function<void()>& completion)
{
    const QStringList folders = addressBookFolders(m_defaults);
    if (m_ready || (!m_loading && !m_book.requestAccess(folders))) {
        if (completion)
            completion();
        return;
    }
    if (completion)
        m_waiting.append(completion);
    if (m_loading)
        return;
    m_loading = true;
    m_background.run<People>([&book = m_book, folders] { return read(book, folders); },
        [self = QPointer(this)](const People& people) {
            if (self)
                self->finish(people);
        });
}

ContactsBridge::People ContactsBridge::read(const AddressBook& book, const QStringList& folders)
{
    People people;
    for (const AddressBookPerson& person : book.people(folders)) {
        QStringList parts { person.givenName, person.familyName };
        parts.removeAll(QString());
        const QString name = parts.isEmpty() ? person.organisation : parts.join(u' ');
        if (name.isEmpty())
            continue;
        for (const QString& phone : person.phones) {
            const QString digits = normalize(phone);
            if (digits.size() >= fewestDigits)
                people.index.insert(digits, { name, person.photo });
        }
    }
    for (auto entry = people.index.keyBegin(); entry != people.index.keyEnd(); ++entry)
        people.byEnding.insert(ending(*entry), *entry);
    return people;
}

void ContactsBridge::finish(const People& people)
{
    m_people = people;
    m_ready = true;
    m_loading = false;
    const auto waiting = std::exchange(m_waiting, {});
    for (const auto& completion : waiting)
        completion();
}

std::optional<ContactsBridge::Person> ContactsBridge::match(const QString& phone) const
{
    const QString digits = normalize(phone);
    if (digits.size() < fewestDigits)
        return std::nullopt;
    if (const auto exact = m_people.index.constFind(digits); exact != m_people.index.constEnd())
        return *exact;
    // One form can only be a suffix of the other if the last 7 digits are equal.
    const QString tail = digits.right(tailDigits);
    for (const QString& key : m_people.byEnding.values(ending(tail))) {
        if (key.endsWith(tail) || tail.endsWith(key.right(tailDigits)))
            return m_people.index.value(key);
    }
    return std::nullopt;
}

QString ContactsBridge::normalize(const QString& text)
{
    QString digits;
    for (const QChar character : text) {
        if (const int value = character.digitValue(); value >= 0 && character.isDigit())
            digits += QChar(u'0' + value);
    }
    return digits;
}

}
