#include "Store/Approvals/DraftStatus.h"

#include "Foundation/Literals.h"

#include <algorithm>
#include <array>

namespace corvane {

namespace {

using enum DraftStep;

struct State {
    DraftStatus status;
    const char16_t* word;
    unsigned steps; ///< a bit each
};

template <typename... Steps> constexpr unsigned any(Steps... steps)
{
    return (0U | ... | (1U << static_cast<unsigned>(steps)));
}

constexpr std::array states {
    State { DraftStatus::Pending, u"pending", any(Decide, Reject) },
    State { DraftStatus::Approved, u"approved", any(Reject, TakeBack, HandOver) },
    State { DraftStatus::Sending, u"sending", any(Acknowledge) },
    State { DraftStatus::Placed, u"placed", any(Reject, Acknowledge, Confirm) },
    State { DraftStatus::Sent, u"sent", any() },
    State { DraftStatus::Failed, u"failed", any(Decide, Reject) },
    State { DraftStatus::Rejected, u"rejected", any() },
    State { DraftStatus::Other, u"", any() },
};

const State& stateOf(DraftStatus status)
{
    return *std::ranges::find(states, status, &State::status);
}

}

DraftStatus draftStatus(QStringView word)
{
    const auto* const found = std::ranges::find_if(states, [&](const State& state) { return word == state.word; });
    return found == states.end() ? DraftStatus::Other : found->status;
}

QString draftStatusWord(DraftStatus status)
{
    return QString::fromUtf16(stateOf(status).word);
}

bool allows(DraftStatus status, DraftStep step)
{
    return (stateOf(status).steps & any(step)) != 0;
}

QString describe(DraftFailure failure, const QString& what)
{
    switch (failure) {
    case DraftFailure::Unacknowledged:
        return u"Engine never acknowledged the send — Retry to requeue."_s;
    case DraftFailure::Changed:
        return u"This draft changed after you approved it. Read it again before you decide."_s;
    case DraftFailure::Unreadable:
        return u"The text of this draft can't be read as it is stored."_s;
    case DraftFailure::EarlierTextUnread:
        return u"The engine has not read the earlier text yet, so that one may still go out. Stop the "
               "account before you send this one."_s;
    case DraftFailure::Uncertain:
        return u"It may have gone out. "_s + what;
    case DraftFailure::Restored:
        return u"May have gone out: it was on its way when the backup was made. Look into the conversation before "
               "you send it again."_s;
    case DraftFailure::AccountGone:
        return u"Account %1 is no longer connected"_s.arg(what);
    case DraftFailure::NoFiles:
        return u"The account %1 can't carry files."_s.arg(what);
    case DraftFailure::FileGone:
        return u"The file %1 is gone. Write the message again with it."_s.arg(what);
    case DraftFailure::FileChanged:
        return u"The file %1 changed after it was attached. Write the message again with it."_s.arg(what);
    }
    return {};
}

}
