#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace corvane {

/// The people of the user's address book, by phone number.
class PhoneDirectory {
public:
    struct Person {
        QString name;
        QByteArray photo; ///< an image file's bytes; empty where there is none
    };

    virtual ~PhoneDirectory() = default;
    virtual std::optional<Person> match(const QString& phone) const = 0;
};

}
