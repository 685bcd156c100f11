#include "Foundation/Channel.h"

#include <algorithm>
#include <array>

namespace corvane {

namespace {

struct ChannelWords {
    Channel channel;
    QStringView raw;
    QStringView label;
};

constexpr std::array channels {
    ChannelWords { Channel::WhatsApp, u"WHATSAPP", u"WhatsApp" },
    ChannelWords { Channel::LinkedIn, u"LINKEDIN", u"LinkedIn" },
    ChannelWords { Channel::Email, u"EMAIL", u"Email" },
    ChannelWords { Channel::Telegram, u"TELEGRAM", u"Telegram" },
    ChannelWords { Channel::Discord, u"DISCORD", u"Discord" },
    ChannelWords { Channel::Slack, u"SLACK", u"Slack" },
    ChannelWords { Channel::Instagram, u"INSTAGRAM", u"Instagram" },
    ChannelWords { Channel::Messenger, u"MESSENGER", u"Messenger" },
    ChannelWords { Channel::Sms, u"SMS", u"SMS" },
    ChannelWords { Channel::IMessage, u"IMESSAGE", u"iMessage" },
};

const ChannelWords* wordsOf(const QString& raw)
{
    const auto found = std::ranges::find_if(channels, [&](const ChannelWords& words) { return raw == words.raw; });
    return found == channels.end() ? nullptr : found;
}

QString capitalised(const QString& text)
{
    QString result = text.toLower();
    bool insideWord = false;
    for (QChar& character : result) {
        if (!insideWord)
            character = character.toUpper();
        insideWord = character.isLetterOrNumber();
    }
    return result;
}

}

QString channelRaw(Channel channel)
{
    return channels.at(static_cast<size_t>(channel)).raw.toString();
}

Channel channelFromRaw(const std::optional<QString>& raw)
{
    const ChannelWords* words = raw ? wordsOf(*raw) : nullptr;
    return words ? words->channel : Channel::WhatsApp;
}

QString channelLabel(const QString& raw)
{
    const ChannelWords* words = wordsOf(raw);
    return words ? words->label.toString() : capitalised(raw);
}

}
