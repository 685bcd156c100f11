#include "Inbox/Compose/UnsentTexts.h"

#include "Foundation/CopyAside.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/PrivateFile.h"

#include <QFile>

namespace corvane {

namespace {

constexpr Milliseconds writeDelay { 500 };
constexpr Milliseconds retryDelay { 10'000 };

const QString textKey = u"text"_s;
const QString subjectKey = u"subject"_s;
const QString filesKey = u"files"_s;

/// A text alone is a text.
QJsonValue savedMessage(const OutgoingMessage& message)
{
    if (message.subject.isEmpty() && message.files.isEmpty())
        return message.text;
    return QJsonObject { { textKey, message.text }, { subjectKey, message.subject },
        { filesKey, filesText(message.files) } };
}

OutgoingMessage readMessage(const QJsonValue& saved)
{
    if (saved.isString())
        return { saved.toString() };
    return { saved[textKey].toString(), saved[subjectKey].toString(),
        filesFromText(saved[filesKey].toString()).value_or(QList<OutgoingFile>()) };
}

}

UnsentTexts::UnsentTexts(const QString& filePath, Scheduler& scheduler)
    : m_filePath(filePath)
    , m_scheduler(scheduler)
{
    load();
}

UnsentTexts::~UnsentTexts()
{
    if (m_writeSoon)
        write();
}

void UnsentTexts::load()
{
    QFile file(m_filePath);
    if (!file.exists())
        return;
    const auto texts = file.open(QIODevice::ReadOnly) ? jsonObject(file.readAll()) : std::nullopt;
    m_fileIsDamaged = !texts;
    if (!texts)
        return;
    for (auto each = texts->begin(); each != texts->end(); ++each) {
        if (const OutgoingMessage message = readMessage(each.value()); message != OutgoingMessage())
            m_messages.insert(each.key(), message);
    }
}

void UnsentTexts::set(const QString& contactId, const OutgoingMessage& message)
{
    if (m_messages.value(contactId) == message)
        return;
    if (message == OutgoingMessage())
        m_messages.remove(contactId);
    else
        m_messages.insert(contactId, message);
    if (!m_writeSoon)
        m_writeSoon = m_scheduler.after(writeDelay, [this] { write(); });
}

QList<OutgoingFile> UnsentTexts::files() const
{
    QList<OutgoingFile> files;
    for (const OutgoingMessage& message : m_messages)
        files += message.files;
    return files;
}

void UnsentTexts::forget(const QString& contactId)
{
    if (m_messages.remove(contactId))
        write();
}

void UnsentTexts::write()
{
    m_writeSoon.reset();
    QJsonObject texts;
    for (auto each = m_messages.cbegin(); each != m_messages.cend(); ++each)
        texts.insert(each.key(), savedMessage(each.value()));
    const bool mayWrite = !m_fileIsDamaged || copyAside(m_filePath);
    // A crash keeps what was written; syncing at every pause in typing would be noticeable.
    if (mayWrite && writePrivateFile(m_filePath, compactJson(texts), Outlives::Program)) {
        m_fileIsDamaged = false;
        return;
    }
    log(u"UnsentTexts: cannot write "_s + m_filePath);
    m_writeSoon = m_scheduler.after(retryDelay, [this] { write(); });
}

}
