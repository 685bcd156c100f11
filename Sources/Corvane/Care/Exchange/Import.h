#pragma once

#include "Care/Exchange/Export.h"

#include <QStringList>

namespace corvane {

class LocalDB;

/// Adds the rows of a folder that `exportProfile` wrote. Existing rows are left unchanged, so a second import adds
/// nothing. All or nothing; the error is for the user.
Result<ExchangeCounts> importFolder(LocalDB& db, const QString& folder);

/// Adds the messages of an mbox file, or a single .eml, to the account's conversations. A message that exists, by its
/// Message-ID, is left unchanged. `ownAddresses` decides what was sent and what was received.
Result<ExchangeCounts> importMails(
    LocalDB& db, const QString& file, const QString& account, const QStringList& ownAddresses);

/// Adds the people of a vCard file by their e-mail addresses and phone numbers. Existing people keep their names.
Result<ExchangeCounts> importCards(LocalDB& db, const QString& file);

}
