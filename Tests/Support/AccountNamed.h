#pragma once

#include "Engines/Account.h"

namespace corvane {

inline Account accountNamed(const QString& slug, Channel channel = Channel::WhatsApp)
{
    Account account;
    account.id = QUuid::createUuid();
    account.name = slug;
    account.slug = slug;
    account.channelRaw = channelRaw(channel);
    return account;
}

}
