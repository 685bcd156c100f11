#pragma once

#include "Platform/AddressBook.h"

class QIODevice;

namespace corvane {

/// Reads the people of a vCard file (versions 3 and 4) one by one. A card without its end, a property that does
/// not read, and a photo that is broken or too large are left out; nothing is ever held that is longer than a
/// photo may be.
class VCardReader {
public:
    /// The device is open for reading and outlives the reader.
    explicit VCardReader(QIODevice& device)
        : m_device(device)
    {
    }

    /// The next whole card, or nothing at the end.
    std::optional<AddressBookPerson> next();

private:
    std::optional<QByteArray> physicalLine(); ///< a null one where it was too long
    std::optional<QByteArray> logicalLine(); ///< unfolded; a null one where it was too long

    QIODevice& m_device;
};

}
