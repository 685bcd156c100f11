#include "Inbox/Compose/UnsentMessages.h"

#include "Engines/EngineManager.h"
#include "Engines/Outbox.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/PrivateFile.h"
#include "Store/People/IdentityQueries.h"

#include <QFile>

namespace corvane {

namespace {

constexpr Milliseconds answerLimit { 120'000 }; // an engine may never answer

const QString uncertain = u"It may have gone out. "_s;
const QString contactKey = u"contact"_s;
const QString platformKey = u"platform"_s;
const QString textKey = u"text"_s;
const QString subjectKey = u"subject"_s;
const QString filesKey = u"files"_s;
const QString reasonKey = u"reason"_s;

QString namesOf(const QList<OutgoingFile>& files)
{
    QStringList names;
    for (const OutgoingFile& file : files)
        names.append(file.name);
    return names.join(u", "_s);
}

}

UnsentMessages::UnsentMessages(EngineManager& engine, Scheduler& scheduler, const QString& filePath)
    : m_engine(engine)
    , m_scheduler(scheduler)
    , m_filePath(filePath)
{
    load();
    connect(&engine, &EngineManager::directSendAnswered, this, &UnsentMessages::answer);
    connect(
        &engine, &EngineManager::sendProgressed, this, [this](const QString&, const QString& id) { awaitAnswer(id); });
    connect(&engine, &EngineManager::runtimeChanged, this, &UnsentMessages::failThoseOf);
}

void UnsentMessages::load()
{
    QFile file(m_filePath);
    const auto messages = file.open(QIODevice::ReadOnly) ? jsonObject(file.readAll()) : std::nullopt;
    if (!messages)
        return;
    for (auto each = messages->begin(); each != messages->end(); ++each) {
        const QJsonObject saved = each.value().toObject();
        Entry entry;
        entry.message = { saved.value(contactKey).toString(), saved.value(platformKey).toString(),
            { saved.value(textKey).toString(), saved.value(subjectKey).toString(),
                filesFromText(saved.value(filesKey).toString()).value_or(QList<OutgoingFile>()) } };
        entry.reason = saved.value(reasonKey).toString();
        if (entry.reason.isEmpty())
            entry.reason = u"Corvane ended before the engine answered. It may have gone out."_s;
        m_entries.emplace(each.key(), std::move(entry));
    }
}

void UnsentMessages::show(const QString& contactId)
{
    m_contactId = contactId;
    present();
}

QString UnsentMessages::begin(const Message& message, const Account& account)
{
    const QString id = EngineManager::directSendId(m_scheduler.nowMs());
    m_entries[id] = { message, account.id, {}, {} };
    awaitAnswer(id);
    changed();
    return id;
}

void UnsentMessages::awaitAnswer(const QString& id)
{
    const auto found = m_entries.find(id);
    if (found != m_entries.end() && found->second.reason.isEmpty())
        found->second.limit = m_scheduler.after(answerLimit, [this, id] { discard(QString(id)); });
}

void UnsentMessages::forget(const QString& id)
{
    if (m_entries.erase(id) > 0)
        changed();
}

void UnsentMessages::discard(const QString& id)
{
    const auto found = m_entries.find(id);
    if (found == m_entries.end())
        return;
    m_engine.outbox().drop(found->second.message.content.files);
    forget(id);
}

QList<OutgoingFile> UnsentMessages::files() const
{
    QList<OutgoingFile> files;
    for (const auto& [id, entry] : m_entries)
        files += entry.message.content.files;
    return files;
}

void UnsentMessages::retry(const QString& id)
{
    const auto found = m_entries.find(id);
    if (found != m_entries.end() && !found->second.reason.isEmpty())
        Q_EMIT retried(id, Message(found->second.message));
}

void UnsentMessages::answer(const QString& id, SendFate fate, const QString& error)
{
    if (fate == SendFate::Sent)
        return discard(QString(id));
    const auto found = m_entries.find(id);
    if (found == m_entries.end())
        return;
    found->second.limit.reset();
    found->second.reason = fate == SendFate::Uncertain ? uncertain + error : error;
    changed();
}

void UnsentMessages::failThoseOf(const QUuid& accountId)
{
    const bool runs = m_engine.isRunning(accountId);
    bool some = false;
    for (auto& [id, entry] : m_entries) {
        if (runs || entry.accountId != accountId || !entry.reason.isEmpty())
            continue;
        entry.limit.reset();
        entry.reason = u"The engine ended before it answered. It may have gone out."_s;
        some = true;
    }
    if (some)
        changed();
}

void UnsentMessages::changed()
{
    QJsonObject messages;
    for (const auto& [id, entry] : m_entries)
        messages.insert(id,
            QJsonObject { { contactKey, entry.message.contactId }, { platformKey, entry.message.platform },
                { textKey, entry.message.content.text }, { subjectKey, entry.message.content.subject },
                { filesKey, filesText(entry.message.content.files) }, { reasonKey, entry.reason } });
    if (!writePrivateFile(m_filePath, compactJson(messages), Outlives::Program))
        log(u"UnsentMessages: cannot write "_s + m_filePath);
    present();
}

void UnsentMessages::present()
{
    QList<UnsentMessageItem> items;
    for (const auto& [id, entry] : m_entries) {
        if (!entry.reason.isEmpty() && !m_contactId.isEmpty()
            && personBehind(m_engine.db(), entry.message.contactId) == m_contactId)
            items.append({ id, entry.message.content.text, namesOf(entry.message.content.files),
                entry.reason.startsWith(uncertain) ? entry.reason : u"Not sent: "_s + entry.reason });
    }
    m_rows.assign(items);
}

}
