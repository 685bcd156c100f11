#include "Foundation/Ids.h"

#include <QRandomGenerator>
#include <QUuid>
#include <atomic>

namespace corvane {

QString stampedId(const QString& prefix, qint64 nowMs)
{
    static std::atomic<quint32> next = QRandomGenerator::global()->generate();
    return QStringLiteral("%1:%2:%3").arg(prefix).arg(nowMs).arg(1000 + next++ % 9000);
}

QString uuidText()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

QString contactId(const QString& channel, const QString& handle)
{
    return QStringLiteral("ct:") + channel + u':' + handle;
}

QString contactIdentityId(const QString& channel, const QString& handle)
{
    return QStringLiteral("id:") + channel + u':' + handle;
}

QString conversationId(const QString& accountSlug, const QString& externalId)
{
    return QStringLiteral("wa:") + accountSlug + u':' + externalId;
}

QString messageId(const QString& providerMsgId)
{
    return QStringLiteral("wa:msg:") + providerMsgId;
}

}
