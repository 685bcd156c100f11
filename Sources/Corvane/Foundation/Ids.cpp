#include "Foundation/Ids.h"

#include <QRandomGenerator>
#include <QUuid>

namespace corvane {

QString stampedId(const QString& prefix, qint64 nowMs)
{
    const int suffix = QRandomGenerator::global()->bounded(1000, 10000);
    return QStringLiteral("%1:%2:%3").arg(prefix).arg(nowMs).arg(suffix);
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
