#include "AI/LumoDraftPrompt.h"

#include "AI/AISchemaValidator.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"

namespace corvane {

namespace {

constexpr qsizetype noteLimit = 8;
constexpr qsizetype identityLimit = 12;
constexpr int styleLength = 180;

QString replyInstructions()
{
    return u"You are Corvane's on-device drafting assistant. You create drafts only.\n"
           "Use only the local context in the prompt. Do not invent unsupported facts, promises, "
           "dates, names, prices, or tasks.\n"
           "If something is unknown, either omit it or say it plainly as uncertainty.\n"
           "Never claim that anything was sent, scheduled, booked, paid, approved, or completed.\n"
           "Return one strict JSON object with keys draft and metadata. No markdown, no commentary.\n"
           "metadata must include intent, tone, language, confidence, used_message_labels, "
           "used_note_ids, warnings, send_side_effect.\n"
           "send_side_effect must always be false."_s;
}

QString rewriteInstructions()
{
    return u"You are Corvane's on-device rewrite assistant. You rewrite composer drafts only.\n"
           "Do not send, queue, approve, or claim a message was sent.\n"
           "Preserve meaning. Preserve every name, date, time, number, price, URL, and quoted segment.\n"
           "Return one strict JSON object with keys draft and metadata. No markdown, no commentary.\n"
           "metadata.send_side_effect must always be false."_s;
}

QString renderNotes(const QList<NoteRow>& notes)
{
    if (notes.isEmpty())
        return u"No recent local notes."_s;
    QStringList lines;
    for (const NoteRow& note : notes.first(std::min(notes.size(), noteLimit))) {
        lines.append(u"[%1] %2: %3"_s.arg(promptLine(note.id), promptTime(note.ts), promptLine(note.body, 420)));
    }
    return lines.join(u'\n');
}

QString renderIdentity(const LumoDraftCRMIdentity& identity)
{
    QStringList parts;
    if (identity.email)
        parts.append(u"email="_s + promptLine(*identity.email));
    if (identity.phone)
        parts.append(u"phone="_s + promptLine(*identity.phone));
    const QString known = parts.isEmpty() ? QString() : u" (%1)"_s.arg(parts.join(u", "_s));
    return u"- %1: %2"_s.arg(promptLine(identity.channel), promptLine(identity.handle, 160)) + known;
}

QString renderPlatforms(const LumoDraftCRMContext& context)
{
    return promptLine(context.platforms.join(u", "_s));
}

QString renderCRM(const LumoDraftCRMContext& context)
{
    const QString platforms = context.platforms.isEmpty() ? u"unknown"_s : renderPlatforms(context);
    QStringList lines { u"Name: "_s + promptLine(context.contactName, 140),
        u"Contact id: "_s + promptLine(context.contactId, 160), u"Platforms: "_s + platforms };
    if (!context.identities.isEmpty())
        lines.append(u"Identities:"_s);
    for (qsizetype at = 0; at < std::min(context.identities.size(), identityLimit); ++at)
        lines.append(renderIdentity(context.identities.at(at)));
    return lines.join(u'\n');
}

/// Escaped for use inside a JSON string.
QString jsonEscaped(const QString& text)
{
    return jsonString({ text }).sliced(2).chopped(2);
}

/// The template of the requested answer.
QString jsonShape(
    const QString& draft, const QString& intent, const QString& style, const QString& language, const QString& labels)
{
    return u"\n\nJSON shape:\n"
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
           "}"_s.arg(draft, intent, jsonEscaped(style), jsonEscaped(language), labels);
}

/// 64-bit FNV-1a of the UTF-8 text, in hexadecimal.
QString fingerprint(const QString& text)
{
    quint64 hash = 14695981039346656037U;
    for (const char byte : text.toUtf8())
        hash = (hash ^ static_cast<quint8>(byte)) * 1099511628211U;
    return u"%1"_s.arg(hash, 16, 16, QChar(u'0'));
}

LumoDraftPrompt finished(
    const QString& instructions, const QStringList& parts, const QList<LocalAIMessageCitation>& citations)
{
    const QString prompt = parts.join(QString());
    return { instructions, prompt, citations, fingerprint(instructions + u'\n' + prompt) };
}

QString detectedLanguage()
{
    return u"detected or requested language"_s;
}

}

QString operationLabel(LumoDraftRewriteAction action)
{
    switch (action) {
    case LumoDraftRewriteAction::Shorten:
        return u"Shorten"_s;
    case LumoDraftRewriteAction::Warmer:
        return u"Make warmer"_s;
    case LumoDraftRewriteAction::Grammar:
        return u"Fix grammar"_s;
    case LumoDraftRewriteAction::Translate:
        return u"Translate"_s;
    }
    Q_UNREACHABLE();
}

QString instruction(LumoDraftRewriteAction action, const QString& targetLanguage)
{
    switch (action) {
    case LumoDraftRewriteAction::Shorten:
        return u"Shorten the draft while keeping every concrete fact, quote, date, name, number, and commitment."_s;
    case LumoDraftRewriteAction::Warmer:
        return u"Make the draft warmer and more human while keeping meaning and all facts unchanged."_s;
    case LumoDraftRewriteAction::Grammar:
        return u"Fix grammar and clarity only. Do not change the meaning, tone intent, or facts."_s;
    case LumoDraftRewriteAction::Translate:
        return u"Translate the draft to %1 while preserving every quoted segment exactly as written."_s.arg(
            targetLanguage.isEmpty() ? u"English"_s : targetLanguage);
    }
    Q_UNREACHABLE();
}

LumoDraftPrompt makeDraftReplyPrompt(
    const LumoDraftCRMContext& context, const QList<UnifiedMsgRow>& messages, const QString& style)
{
    const QList<LocalAIMessageCitation> citations = citationMessages(messages);
    return finished(replyInstructions(),
        { u"Task: Draft a reply for the composer. The user will inspect/edit/send manually.\n"
          "Requested style/tone: "_s,
            promptLine(style, styleLength), u"\n\nCRM person:\n"_s, renderCRM(context), u"\n\nRecent local notes:\n"_s,
            renderNotes(context.recentNotes), u"\n\nLocal thread:\n"_s, renderThread(citations),
            u"\n\nDraft rules:\n"
            "- Ground the reply in the local thread and CRM context above.\n"
            "- Do not add facts that are not present above.\n"
            "- Keep it concise and natural.\n"
            "- Do not include a subject line.\n"
            "- Do not include citations in the draft text, but list used labels in metadata."_s,
            jsonShape(u"composer-ready text"_s, u"draft_reply"_s, style, detectedLanguage(), u"\"M1\""_s) },
        citations);
}

LumoDraftPrompt makeRewritePrompt(const QString& text, LumoDraftRewriteAction action, const QString& targetLanguage,
    const LumoDraftCRMContext& context, const QList<UnifiedMsgRow>& messages, const QString& style)
{
    const QList<LocalAIMessageCitation> citations = citationMessages(messages);
    QStringList facts = quotedFacts(text);
    for (QString& fact : facts)
        fact.prepend(u"- "_s);
    return finished(rewriteInstructions(),
        { u"Task: "_s, instruction(action, targetLanguage), u"\nRequested style/tone: "_s,
            promptLine(style, styleLength), u"\nContact: "_s, promptLine(context.contactName, 120), u"\nChannels: "_s,
            renderPlatforms(context), u"\n\nRecent local context, for tone only:\n"_s, renderThread(citations),
            u"\n\nComposer text to rewrite:\n"_s, text, u"\n\nQuoted segments that must remain exact:\n"_s,
            facts.isEmpty() ? u"None"_s : facts.join(u'\n'),
            jsonShape(u"rewritten composer-ready text"_s, u"rewrite_text"_s, style,
                targetLanguage.isEmpty() ? detectedLanguage() : targetLanguage, QString()) },
        citations);
}

}
