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
        QByteArray image; ///< the bytes of an image file; empty if there is none

        bool operator==(const Person&) const = default;
    };

    /// The references outlive the object. "nimb.addressBookFolders" adds folders, separated by ":".
    ContactsBridge(const AddressBook& book, BackgroundQueue& background, UserDefaults& defaults);

    /// Reads the address book in the background, once; `completion` is always called. If reading is not permitted, the
    /// index stays empty and a later call tries again.
    void load(const std::function<void()>& completion = {});

    const QHash<QString, Person>& index() const { return m_people.index; } ///< by the digits of the number
    bool ready() const { return m_ready; }

    /// Matches national and international forms of a number. Numbers of fewer than 7 digits never match.
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
