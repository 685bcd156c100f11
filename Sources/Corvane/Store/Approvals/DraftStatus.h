#pragma once

#include <QString>

namespace corvane {

/// The status of a draft, as stored in its row. `Other` is a word of another program.
enum class DraftStatus { Pending, Approved, Sending, Placed, Sent, Failed, Rejected, Other };

/// An operation on a draft.
enum class DraftStep {
    Decide, ///< the user approves or edits it
    Reject,
    TakeBack, ///< an approved one becomes pending again
    HandOver, ///< to an engine
    Acknowledge, ///< its engine reports the result
    Confirm, ///< the user saw that a placed one was sent
};

DraftStatus draftStatus(QStringView word);
QString draftStatusWord(DraftStatus status); ///< empty for `Other`

/// The one rule for which operation is allowed in which status.
bool allows(DraftStatus status, DraftStep step);

/// Why a draft failed or is pending again. The row stores the text.
enum class DraftFailure {
    Unacknowledged, ///< its engine reported no result within two minutes
    Changed, ///< it differs from what was approved
    Unreadable,
    EarlierTextUnread, ///< another text for the same draft may still be sent
    Uncertain, ///< its engine cannot know whether it was sent
    Restored, ///< it was approved or being sent when the restored backup was made
    AccountGone,
    NoFiles, ///< the channel does not support files
    FileGone,
    FileChanged,
};

/// `what` is the account or the file, or the engine's error.
QString describe(DraftFailure failure, const QString& what = {});

}
