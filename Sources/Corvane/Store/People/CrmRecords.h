#pragma once

#include "Foundation/Literals.h"
#include "Store/Core/LocalDB.h"

#include <QStringList>

namespace corvane {

// Deals, tasks and notes of a contact. Every change is also queued for the web. Times are milliseconds since the epoch.
// Functions that add a row return its id, or nothing if it could not be saved.

struct NoteRow {
    QString id;
    QString body;
    qint64 ts = 0;
};

QList<NoteRow> fetchNotes(LocalDB& db, const QString& contactId); ///< newest first
std::optional<QString> addNote(LocalDB& db, const QString& contactId, const QString& body);

struct CRMTaskRow {
    QString id;
    QString title;
    QString due; ///< free text
    QString priority;
    QString status;
    qint64 updatedAt = 0;
};

struct NewTask {
    QString title;
    QString due;
    QString priority = u"Normal"_s;
    QString status = u"To do"_s;
};

enum class DoneTasks { Leave, Include };

QList<CRMTaskRow> fetchContactTasks(LocalDB& db, const QString& contactId, DoneTasks done, int limit);
std::optional<QString> insertCRMTask(LocalDB& db, const NewTask& task);
std::optional<QString> insertCRMTask(LocalDB& db, const QString& contactId, const NewTask& task);
bool completeCRMTask(LocalDB& db, const QString& id);
bool reopenCRMTask(LocalDB& db, const QString& id, const QString& status); ///< with its previous status

struct CRMDealRow {
    QString id;
    QString name;
    QString stage;
    QString value; ///< free text, as entered
    QString company;
    qint64 updatedAt = 0;
};

struct NewDeal {
    QString name;
    QString stage;
    QString value;
    QString company;
    std::optional<QString> closeDate;
};

QList<CRMDealRow> fetchContactDeals(LocalDB& db, const QString& contactId, int limit);
std::optional<QString> insertCRMDeal(LocalDB& db, const QString& contactId, const NewDeal& deal);

bool moveCRMDeal(LocalDB& db, const QString& id, const QString& stage);

/// A deal among all deals.
struct PipelineDeal {
    QString name;
    QString company;
    QString stage;
    QString value;
    QString closeDate;
};

QList<PipelineDeal> fetchCRMDeals(LocalDB& db);

struct CRMPipelineStageSummary {
    QString stage;
    int dealCount = 0;
    qint64 totalValue = 0;

    bool operator==(const CRMPipelineStageSummary&) const = default;
};

/// The stages of the pipeline, in order.
QStringList pipelineStages();

/// Stages that have deals: those of the pipeline in order, "Unstaged", then any others.
QList<CRMPipelineStageSummary> fetchCRMPipelineStageSummaries(LocalDB& db);

/// The number in a free text: "$12.5k" is 12500; 0 if there is none.
qint64 dealValue(const QString& text);

}
