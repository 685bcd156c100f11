#pragma once

#include <QString>

namespace corvane {

/// Where a draft stands: the word in its row. `Other` is a word of another program that is none of these.
enum class DraftStatus { Pending, Approved, Sending, Placed, Sent, Failed, Rejected, Other };

/// What is done with a draft.
enum class DraftStep {
    Decide, ///< a person approves or edits it
    Reject,
    TakeBack, ///< an approved one waits for a person again
    HandOver, ///< to an engine
    Acknowledge, ///< its engine says what became of it
    Confirm, ///< a person saw that one that was placed went out
};

DraftStatus draftStatus(QStringView word);
QString draftStatusWord(DraftStatus status); ///< empty for `Other`

/// The one rule of which step a draft in which state can take.
bool allows(DraftStatus status, DraftStep step);

/// Why a draft failed, or waits for a person again. The row keeps the words.
enum class DraftFailure {
    Unacknowledged, ///< its engine had two minutes to say what became of it
    Changed, ///< it is not as it was approved
    Unreadable,
    EarlierTextUnread, ///< another text for the same draft may still go out
    Uncertain, ///< its engine cannot know whether it went out
    AccountGone,
    NoFiles, ///< the channel carries none
    FileGone,
    FileChanged,
};

/// `what` is the account or the file, or what the engine said.
QString describe(DraftFailure failure, const QString& what = {});

}
