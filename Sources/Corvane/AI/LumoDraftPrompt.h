#pragma once

#include "AI/LocalAIMessageCitation.h"
#include "Store/People/CrmRecords.h"

namespace corvane {

struct LumoDraftCRMIdentity {
    QString channel;
    QString handle;
    std::optional<QString> email;
    std::optional<QString> phone;
};

/// What is known about the recipient.
struct LumoDraftCRMContext {
    QString contactId;
    QString contactName;
    QStringList platforms;
    QList<LumoDraftCRMIdentity> identities;
    QList<NoteRow> recentNotes; ///< newest first
};

enum class LumoDraftRewriteAction { Shorten, Warmer, Grammar, Translate };

QString operationLabel(LumoDraftRewriteAction action);
/// An empty target language means English.
QString instruction(LumoDraftRewriteAction action, const QString& targetLanguage);

struct LumoDraftPrompt {
    QString instructions;
    QString prompt;
    QList<LocalAIMessageCitation> citations;
    QString promptFingerprint; ///< of the two final texts: the same input always has the same fingerprint
};

// Pure functions. Texts of others are put into a prompt as single lines, so that they cannot end their section.

LumoDraftPrompt makeDraftReplyPrompt(
    const LumoDraftCRMContext& context, const QList<UnifiedMsgRow>& messages, const QString& style);

LumoDraftPrompt makeRewritePrompt(const QString& text, LumoDraftRewriteAction action, const QString& targetLanguage,
    const LumoDraftCRMContext& context, const QList<UnifiedMsgRow>& messages, const QString& style);

}
