#include "Inbox/Compose/UnsentTexts.h"

#include "Foundation/CopyAside.h"
#include "Foundation/Json.h"
#include "Foundation/Log.h"
#include "Platform/PrivateFile.h"

#include <QFile>

namespace corvane {

namespace {

constexpr Milliseconds writeDelay { 500 };
constexpr Milliseconds retryDelay { 10'000 };

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
        if (const QString text = each.value().toString(); !text.isEmpty())
            m_texts.insert(each.key(), text);
    }
}

void UnsentTexts::setText(const QString& contactId, const QString& text)
{
    if (m_texts.value(contactId) == text)
        return;
    if (text.isEmpty())
        m_texts.remove(contactId);
    else
        m_texts.insert(contactId, text);
    if (!m_writeSoon)
        m_writeSoon = m_scheduler.after(writeDelay, [this] { write(); });
}

void UnsentTexts::forget(const QString& contactId)
{
    if (m_texts.remove(contactId))
        write();
}

void UnsentTexts::write()
{
    m_writeSoon.reset();
    QJsonObject texts;
    for (auto each = m_texts.cbegin(); each != m_texts.cend(); ++each)
        texts.insert(each.key(), each.value());
    const bool mayWrite = !m_fileIsDamaged || copyAside(m_filePath);
    // A kill leaves what was written; waiting for the disk at every pause of the keys would be felt.
    if (mayWrite && writePrivateFile(m_filePath, compactJson(texts), Outlives::Program)) {
        m_fileIsDamaged = false;
        return;
    }
    log(QStringLiteral("UnsentTexts: cannot write ") + m_filePath);
    m_writeSoon = m_scheduler.after(retryDelay, [this] { write(); });
}

}
