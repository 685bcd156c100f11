#include "CRM/ContactsBridge.h"

#include "Foundation/BackgroundQueue.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AddressBook.h"

#include <QPointer>

namespace corvane {

namespace {

constexpr qsizetype fewestDigits = 7;
constexpr qsizetype tailDigits = 9;

using Index = QHash<QString, ContactsBridge::Person>;

Index indexOf(const QList<AddressBookPerson>& people)
{
    Index index;
    for (const AddressBookPerson& person : people) {
        QStringList parts { person.givenName, person.familyName };
        parts.removeAll(QString());
        const QString name = parts.isEmpty() ? person.organisation : parts.join(u' ');
        if (name.isEmpty())
            continue;
        for (const QString& phone : person.phones) {
            const QString digits = ContactsBridge::normalize(phone);
            if (digits.size() >= fewestDigits)
                index.insert(digits, { name, person.photo });
        }
    }
    return index;
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
    const QStringList folders = m_defaults.text(QStringLiteral("nimb.addressBookFolders"))
                                    .value_or(QString())
                                    .split(u':', Qt::SkipEmptyParts);
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
    m_background.run<Index>([&book = m_book, folders] { return indexOf(book.people(folders)); },
        [self = QPointer(this)](const Index& index) {
            if (self)
                self->finish(index);
        });
}

void ContactsBridge::finish(const Index& index)
{
    m_index = index;
    for (auto entry = m_index.keyBegin(); entry != m_index.keyEnd(); ++entry)
        m_byEnding.insert(entry->right(fewestDigits), *entry);
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
    if (const auto exact = m_index.constFind(digits); exact != m_index.constEnd())
        return *exact;
    // Either form ends with the other only where the last 7 digits are the same.
    const QString tail = digits.right(tailDigits);
    for (const QString& key : m_byEnding.values(tail.right(fewestDigits))) {
        if (key.endsWith(tail) || tail.endsWith(key.right(tailDigits)))
            return m_index.value(key);
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
