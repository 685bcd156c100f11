#include "AI/LumoDraftPrompt.h"

#include "AI/AISchemaValidator.h"
#include "Foundation/Text.h"

namespace corvane {

namespace {

constexpr qsizetype noteLimit = 8;
constexpr qsizetype identityLimit = 12;
constexpr int styleLength = 180;

QString replyInstructions()
{
    return QStringLiteral("You are Corvane's on-device drafting assistant. You create drafts only.\n"
                          "Use only the local context in the prompt. Do not invent unsupported facts, promises, "
                          "dates, names, prices, or tasks.\n"
                          "If something is unknown, either omit it or say it plainly as uncertainty.\n"
                          "Never claim that anything was sent, scheduled, booked, paid, approved, or completed.\n"
                          "Return one strict JSON object with keys draft and metadata. No markdown, no commentary.\n"
                          "metadata must include intent, tone, language, confidence, used_message_labels, "
                          "used_note_ids, warnings, send_side_effect.\n"
                          "send_side_effect must always be false.");
}

QString rewriteInstructions()
{
    return QStringLiteral("You are Corvane's on-device rewrite assistant. You rewrite composer drafts only.\n"
                          "Do not send, queue, approve, or claim a message was sent.\n"
                          "Preserve meaning. Preserve every name, date, time, number, price, URL, and quoted segment.\n"
                          "Return one strict JSON object with keys draft and metadata. No markdown, no commentary.\n"
                          "metadata.send_side_effect must always be false.");
}

QString renderNotes(const QList<NoteRow>& notes)
{
    if (notes.isEmpty())
        return QStringLiteral("No recent local notes.");
    QStringList lines;
    for (const NoteRow& note : notes.first(std::min(notes.size(), noteLimit))) {
        lines.append(
            QStringLiteral("[%1] %2: %3").arg(promptLine(note.id), promptTime(note.ts), promptLine(note.body, 420)));
    }
    return lines.join(u'\n');
}

QString renderIdentity(const LumoDraftCRMIdentity& identity)
{
    QStringList parts;
    if (identity.email)
        parts.append(QStringLiteral("email=") + promptLine(*identity.email));
    if (identity.phone)
        parts.append(QStringLiteral("phone=") + promptLine(*identity.phone));
    const QString known = parts.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(parts.join(QStringLiteral(", ")));
    return QStringLiteral("- %1: %2").arg(promptLine(identity.channel), promptLine(identity.handle, 160)) + known;
}

QString renderPlatforms(const LumoDraftCRMContext& context)
{
    return promptLine(context.platforms.join(QStringLiteral(", ")));
}

QString renderCRM(const LumoDraftCRMContext& context)
{
    const QString platforms = context.platforms.isEmpty() ? QStringLiteral("unknown") : renderPlatforms(context);
    QStringList lines { QStringLiteral("Name: ") + promptLine(context.contactName, 140),
        QStringLiteral("Contact id: ") + promptLine(context.contactId, 160),
        QStringLiteral("Platforms: ") + platforms };
    if (!context.identities.isEmpty())
        lines.append(QStringLiteral("Identities:"));
    for (qsizetype at = 0; at < std::min(context.identities.size(), identityLimit); ++at)
        lines.append(renderIdentity(context.identities.at(at)));
    return lines.join(u'\n');
}

/// As the inside of a JSON string.
QString jsonEscaped(const QString& text)
{
    return jsonString({ text }).sliced(2).chopped(2);
}

/// The answer that is asked for, to be filled in.
QString jsonShape(
    const QString& draft, const QString& intent, const QString& style, const QString& language, const QString& labels)
{
    return QStringLiteral("\n\nJSON shape:\n"
                          "{\n"
                          "  \"draft\": \"%1\",\n"
                          "  \"metadata\": {\n"
                          "    \"intent\": \"%2\",\n"
                          "    \"tone\": \"%3\",\n"
                          "    \"language\": \"%4\",\n"
                          "    \"confidence\": 0.0,\n"
                          "    \"used_message_labels\": [%5],\n"
                          "    \"used_note_ids\": [],\n"
                          "    \"warnings\": [],\n"
                          "    \"send_side_effect\": false\n"
                          "  }\n"
                          "}")
        .arg(draft, intent, jsonEscaped(style), jsonEscaped(language), labels);
}

/// FNV-1a with 64 bits over the UTF-8 text, in hexadecimal.
QString fingerprint(const QString& text)
{
    quint64 hash = 14695981039346656037U;
    for (const char byte : text.toUtf8())
        hash = (hash ^ static_cast<quint8>(byte)) * 1099511628211U;
    return QStringLiteral("%1").arg(hash, 16, 16, QChar(u'0'));
}

LumoDraftPrompt finished(
    const QString& instructions, const QStringList& parts, const QList<LocalAIMessageCitation>& citations)
{
    const QString prompt = parts.join(QString());
    return { instructions, prompt, citations, fingerprint(instructions + u'\n' + prompt) };
}

QString detectedLanguage()
{
    return QStringLiteral("detected or requested language");
}

}

QString operationLabel(LumoDraftRewriteAction action)
{
    switch (action) {
    case LumoDraftRewriteAction::Shorten:
        return QStringLiteral("Shorten");
    case LumoDraftRewriteAction::Warmer:
        return QStringLiteral("Make warmer");
    case LumoDraftRewriteAction::Grammar:
        return QStringLiteral("Fix grammar");
    case LumoDraftRewriteAction::Translate:
        return QStringLiteral("Translate");
    }
    Q_UNREACHABLE();
}

QString instruction(LumoDraftRewriteAction action, const QString& targetLanguage)
{
    switch (action) {
    case LumoDraftRewriteAction::Shorten:
        return QStringLiteral(
            "Shorten the draft while keeping every concrete fact, quote, date, name, number, and commitment.");
    case LumoDraftRewriteAction::Warmer:
        return QStringLiteral("Make the draft warmer and more human while keeping meaning and all facts unchanged.");
    case LumoDraftRewriteAction::Grammar:
        return QStringLiteral("Fix grammar and clarity only. Do not change the meaning, tone intent, or facts.");
    case LumoDraftRewriteAction::Translate:
        return QStringLiteral("Translate the draft to %1 while preserving every quoted segment exactly as written.")
            .arg(targetLanguage.isEmpty() ? QStringLiteral("English") : targetLanguage);
    }
    Q_UNREACHABLE();
}

LumoDraftPrompt makeDraftReplyPrompt(
    const LumoDraftCRMContext& context, const QList<UnifiedMsgRow>& messages, const QString& style)
{
    const QList<LocalAIMessageCitation> citations = citationMessages(messages);
    return finished(replyInstructions(),
        { QStringLiteral("Task: Draft a reply for the composer. The user will inspect/edit/send manually.\n"
                         "Requested style/tone: "),
            promptLine(style, styleLength), QStringLiteral("\n\nCRM person:\n"), renderCRM(context),
            QStringLiteral("\n\nRecent local notes:\n"), renderNotes(context.recentNotes),
            QStringLiteral("\n\nLocal thread:\n"), renderThread(citations),
            QStringLiteral("\n\nDraft rules:\n"
                           "- Ground the reply in the local thread and CRM context above.\n"
                           "- Do not add facts that are not present above.\n"
                           "- Keep it concise and natural.\n"
                           "- Do not include a subject line.\n"
                           "- Do not include citations in the draft text, but list used labels in metadata."),
            jsonShape(QStringLiteral("composer-ready text"), QStringLiteral("draft_reply"), style, detectedLanguage(),
                QStringLiteral("\"M1\"")) },
        citations);
}

LumoDraftPrompt makeRewritePrompt(const QString& text, LumoDraftRewriteAction action, const QString& targetLanguage,
    const LumoDraftCRMContext& context, const QList<UnifiedMsgRow>& messages, const QString& style)
{
    const QList<LocalAIMessageCitation> citations = citationMessages(messages);
    QStringList facts = quotedFacts(text);
    for (QString& fact : facts)
        fact.prepend(QStringLiteral("- "));
    return finished(rewriteInstructions(),
        { QStringLiteral("Task: "), instruction(action, targetLanguage), QStringLiteral("\nRequested style/tone: "),
            promptLine(style, styleLength), QStringLiteral("\nContact: "), promptLine(context.contactName, 120),
            QStringLiteral("\nChannels: "), renderPlatforms(context),
            QStringLiteral("\n\nRecent local context, for tone only:\n"), renderThread(citations),
            QStringLiteral("\n\nComposer text to rewrite:\n"), text,
            QStringLiteral("\n\nQuoted segments that must remain exact:\n"),
            facts.isEmpty() ? QStringLiteral("None") : facts.join(u'\n'),
            jsonShape(QStringLiteral("rewritten composer-ready text"), QStringLiteral("rewrite_text"), style,
                targetLanguage.isEmpty() ? detectedLanguage() : targetLanguage, QString()) },
        citations);
}

}
