#include "Foundation/Ids.h"

#include "Foundation/Literals.h"

#include <QRandomGenerator>
#include <QUuid>
#include <atomic>

namespace corvane {

QString stampedId(const QString& prefix, qint64 nowMs)
{
    static std::atomic<quint32> next = QRandomGenerator::global()->generate();
    return u"%1:%2:%3"_s.arg(prefix).arg(nowMs).arg(1000 + next++ % 9000);
}

QString uuidText()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

QString contactId(const QString& channel, const QString& handle)
{
    return u"ct:"_s + channel + u':' + handle;
}

QString contactIdentityId(const QString& channel, const QString& handle)
{
    return u"id:"_s + channel + u':' + handle;
}

QString conversationId(const QString& accountSlug, const QString& externalId)
{
    return u"wa:"_s + accountSlug + u':' + externalId;
}

QString messageId(const QString& providerMsgId)
{
    return u"wa:msg:"_s + providerMsgId;
}

}
