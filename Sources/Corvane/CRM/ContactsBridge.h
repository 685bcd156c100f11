#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <optional>

namespace corvane {

class AddressBook;
class BackgroundQueue;
class UserDefaults;

/// The people of the user's address book, by phone number.
class ContactsBridge : public QObject {
    Q_OBJECT
public:
    struct Person {
        QString name;
        QByteArray image; ///< an image file's bytes; empty where there is none

        bool operator==(const Person&) const = default;
    };

    /// The references outlive the object. "nimb.addressBookFolders" names further folders, with ":" between them.
    ContactsBridge(const AddressBook& book, BackgroundQueue& background, UserDefaults& defaults);

    /// Reads the book away from the main thread, once; `completion` follows in any case, and a book that may not
    /// be read leaves the index empty and can be asked again.
    void load(const std::function<void()>& completion = {});

    const QHash<QString, Person>& index() const { return m_people.index; } ///< by the digits of the number
    bool ready() const { return m_ready; }

    /// National and international forms of one number meet. A number of less than 7 digits is nobody's.
    std::optional<Person> match(const QString& phone) const;

    static QString normalize(const QString& text); ///< its digits

private:
    struct People {
        QHash<QString, Person> index;
        QMultiHash<QString, QString> byEnding; ///< the keys of the index by their last 7 digits
    };

    static People read(const AddressBook& book, const QStringList& folders);
    void finish(const People& people);

    const AddressBook& m_book;
    BackgroundQueue& m_background;
    UserDefaults& m_defaults;
    People m_people;
    bool m_ready = false;
    bool m_loading = false;
    QList<std::function<void()>> m_waiting;
};

}
