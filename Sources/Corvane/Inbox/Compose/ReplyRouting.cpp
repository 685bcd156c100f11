#include "Inbox/Compose/ReplyRouting.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"

namespace corvane {

namespace {

QString keyOf(const ContactRow& contact)
{
    return u"nimb.replyPlatform."_s + contact.id;
}

}

QString preferredReplyPlatform(const UserDefaults& defaults, const ContactRow& contact)
{
    const auto remembered = defaults.text(keyOf(contact));
    if (remembered && contact.platforms.contains(*remembered))
        return *remembered;
    return contact.platforms.value(0, u"WHATSAPP"_s);
}

void rememberReplyPlatform(UserDefaults& defaults, const QString& platform, const ContactRow& contact)
{
    if (contact.platforms.contains(platform))
        defaults.setText(keyOf(contact), platform);
}

}
