#pragma once

#include "Platform/AddressBook.h"

class QIODevice;

namespace corvane {

/// Reads the people of a vCard file (versions 3 and 4) one by one. Incomplete cards, unreadable properties, and photos
/// that are broken or too large are skipped; nothing longer than a photo may be is kept in memory.
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
    std::optional<QByteArray> physicalLine(); ///< a null one if it was too long
    std::optional<QByteArray> logicalLine(); ///< unfolded; a null one if it was too long

    QIODevice& m_device;
};

}
