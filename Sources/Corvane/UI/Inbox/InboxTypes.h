#pragma once

#include "Inbox/InboxView.h"

#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the rooms that this module's QML names. The rooms know nothing of QML.

struct InboxViewType {
    Q_GADGET
    QML_FOREIGN(corvane::InboxView)
    QML_NAMED_ELEMENT(InboxView)
    QML_UNCREATABLE("The program makes it.")
};

struct ListFilterType {
    Q_GADGET
    QML_FOREIGN(corvane::ListFilter)
    QML_NAMED_ELEMENT(ListFilter)
    QML_UNCREATABLE("The program makes it.")
};

struct ContactListViewType {
    Q_GADGET
    QML_FOREIGN(corvane::ContactListView)
    QML_NAMED_ELEMENT(ContactListView)
    QML_UNCREATABLE("The program makes it.")
};

struct SearchResultsType {
    Q_GADGET
    QML_FOREIGN(corvane::SearchResults)
    QML_NAMED_ELEMENT(SearchResults)
    QML_UNCREATABLE("The program makes it.")
};

struct ListNoticesType {
    Q_GADGET
    QML_FOREIGN(corvane::ListNotices)
    QML_NAMED_ELEMENT(ListNotices)
    QML_UNCREATABLE("The program makes it.")
};

struct OpenPersonType {
    Q_GADGET
    QML_FOREIGN(corvane::OpenPerson)
    QML_NAMED_ELEMENT(OpenPerson)
    QML_UNCREATABLE("The program makes it.")
};

struct ListActionsType {
    Q_GADGET
    QML_FOREIGN(corvane::ListActions)
    QML_NAMED_ELEMENT(ListActions)
    QML_UNCREATABLE("The program makes it.")
};

struct BulkSelectionType {
    Q_GADGET
    QML_FOREIGN(corvane::BulkSelection)
    QML_NAMED_ELEMENT(BulkSelection)
    QML_UNCREATABLE("The program makes it.")
};

struct CommandPaletteType {
    Q_GADGET
    QML_FOREIGN(corvane::CommandPalette)
    QML_NAMED_ELEMENT(CommandPalette)
    QML_UNCREATABLE("The program makes it.")
};

struct ThreadViewType {
    Q_GADGET
    QML_FOREIGN(corvane::ThreadView)
    QML_NAMED_ELEMENT(ThreadView)
    QML_UNCREATABLE("The program makes it.")
};

struct ThreadReadingType {
    Q_GADGET
    QML_FOREIGN(corvane::ThreadReading)
    QML_NAMED_ELEMENT(ThreadReading)
    QML_UNCREATABLE("The program makes it.")
};

struct ThreadHistoryType {
    Q_GADGET
    QML_FOREIGN(corvane::ThreadHistory)
    QML_NAMED_ELEMENT(ThreadHistory)
    QML_UNCREATABLE("The program makes it.")
};

struct MessageActionsType {
    Q_GADGET
    QML_FOREIGN(corvane::MessageActions)
    QML_NAMED_ELEMENT(MessageActions)
    QML_UNCREATABLE("The program makes it.")
};

struct VoiceTranscriptsType {
    Q_GADGET
    QML_FOREIGN(corvane::VoiceTranscripts)
    QML_NAMED_ELEMENT(VoiceTranscripts)
    QML_UNCREATABLE("The program makes it.")
};

struct ComposerDictationType {
    Q_GADGET
    QML_FOREIGN(corvane::ComposerDictation)
    QML_NAMED_ELEMENT(ComposerDictation)
    QML_UNCREATABLE("The program makes it.")
};

struct VoicePlayerType {
    Q_GADGET
    QML_FOREIGN(corvane::VoicePlayer)
    QML_NAMED_ELEMENT(VoicePlayer)
    QML_UNCREATABLE("The program makes it.")
};

struct AttachmentsType {
    Q_GADGET
    QML_FOREIGN(corvane::Attachments)
    QML_NAMED_ELEMENT(Attachments)
    QML_UNCREATABLE("The program makes it.")
};

struct AttachmentItemType {
    Q_GADGET
    QML_FOREIGN(corvane::AttachmentItem)
    QML_VALUE_TYPE(attachmentItem)
};

struct ReplyType {
    Q_GADGET
    QML_FOREIGN(corvane::Reply)
    QML_NAMED_ELEMENT(Reply)
    QML_UNCREATABLE("The program makes it.")
};

struct ComposerType {
    Q_GADGET
    QML_FOREIGN(corvane::Composer)
    QML_NAMED_ELEMENT(Composer)
    QML_UNCREATABLE("The program makes it.")
};

struct ReplyRoutingType {
    Q_GADGET
    QML_FOREIGN(corvane::ReplyRouting)
    QML_NAMED_ELEMENT(ReplyRouting)
    QML_UNCREATABLE("The program makes it.")
};

struct ComposerHintsType {
    Q_GADGET
    QML_FOREIGN(corvane::ComposerHints)
    QML_NAMED_ELEMENT(ComposerHints)
    QML_UNCREATABLE("The program makes it.")
};

struct ComposerVoiceType {
    Q_GADGET
    QML_FOREIGN(corvane::ComposerVoice)
    QML_NAMED_ELEMENT(ComposerVoice)
    QML_UNCREATABLE("The program makes it.")
};

struct VoiceRecorderType {
    Q_GADGET
    QML_FOREIGN(corvane::VoiceRecorder)
    QML_NAMED_ELEMENT(VoiceRecorder)
    QML_UNCREATABLE("The program makes it.")
};

struct ComposeSheetType {
    Q_GADGET
    QML_FOREIGN(corvane::ComposeSheet)
    QML_NAMED_ELEMENT(ComposeSheet)
    QML_UNCREATABLE("The program makes it.")
};

struct GenerationPanelType {
    Q_GADGET
    QML_FOREIGN(corvane::GenerationPanel)
    QML_NAMED_ELEMENT(GenerationPanel)
    QML_UNCREATABLE("The program makes it.")
};

struct DraftAssistantType {
    Q_GADGET
    QML_FOREIGN(corvane::DraftAssistant)
    QML_NAMED_ELEMENT(DraftAssistant)
    QML_UNCREATABLE("The program makes it.")
};

struct ThreadSummaryType {
    Q_GADGET
    QML_FOREIGN(corvane::ThreadSummary)
    QML_NAMED_ELEMENT(ThreadSummary)
    QML_UNCREATABLE("The program makes it.")
};

struct AskLumoType {
    Q_GADGET
    QML_FOREIGN(corvane::AskLumo)
    QML_NAMED_ELEMENT(AskLumo)
    QML_UNCREATABLE("The program makes it.")
};

struct DealFormType {
    Q_GADGET
    QML_FOREIGN(corvane::DealForm)
    QML_NAMED_ELEMENT(DealForm)
    QML_UNCREATABLE("The program makes it.")
};

struct PaneSectionType {
    Q_GADGET
    QML_FOREIGN(corvane::PaneSection)
    QML_NAMED_ELEMENT(PaneSection)
    QML_UNCREATABLE("The program makes it.")
};

struct CRMPaneType {
    Q_GADGET
    QML_FOREIGN(corvane::CRMPane)
    QML_NAMED_ELEMENT(CRMPane)
    QML_UNCREATABLE("The program makes it.")
};

struct ContactItemType {
    Q_GADGET
    QML_FOREIGN(corvane::ContactItem)
    QML_VALUE_TYPE(contactItem)
};

struct MessageHitItemType {
    Q_GADGET
    QML_FOREIGN(corvane::MessageHitItem)
    QML_VALUE_TYPE(messageHit)
};

struct RecordHitItemType {
    Q_GADGET
    QML_FOREIGN(corvane::RecordHitItem)
    QML_VALUE_TYPE(recordHit)
};

struct PaletteItemType {
    Q_GADGET
    QML_FOREIGN(corvane::PaletteItem)
    QML_VALUE_TYPE(paletteItem)
};

struct StalenessBannerType {
    Q_GADGET
    QML_FOREIGN(corvane::StalenessBanner)
    QML_VALUE_TYPE(stalenessBanner)
};

struct ThreadRowType {
    Q_GADGET
    QML_FOREIGN(corvane::ThreadRow)
    QML_VALUE_TYPE(threadRow)
};

struct MessageOfferType {
    Q_GADGET
    QML_FOREIGN(corvane::MessageOffer)
    QML_VALUE_TYPE(messageOffer)
};

struct UnsentMessagesType {
    Q_GADGET
    QML_FOREIGN(corvane::UnsentMessages)
    QML_NAMED_ELEMENT(UnsentMessages)
    QML_UNCREATABLE("The program makes it.")
};

struct UnsentMessageItemType {
    Q_GADGET
    QML_FOREIGN(corvane::UnsentMessageItem)
    QML_VALUE_TYPE(unsentMessage)
};

struct AccountChoiceType {
    Q_GADGET
    QML_FOREIGN(corvane::AccountChoice)
    QML_VALUE_TYPE(accountChoice)
};

struct CitationType {
    Q_GADGET
    QML_FOREIGN(corvane::Citation)
    QML_VALUE_TYPE(citation)
};

struct PaneRowType {
    Q_GADGET
    QML_FOREIGN(corvane::PaneRow)
    QML_VALUE_TYPE(paneRow)
};

}
