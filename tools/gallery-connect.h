#pragma once

// The sheets that connect channels. The demonstration's engine finds mail servers by the domain, and refuses the
// password "wrong".

#include "gallery-look.h"

#include "Settings/IntegrationsView.h"

namespace corvane {

inline void drawConnectSheets(IntegrationsView& settings, const std::function<void(Milliseconds)>& wait,
    const std::function<void(const QString& name, Look look)>& save)
{
    using namespace Qt::StringLiterals;
    for (const QString& channel : { u"SLACK"_s, u"SMS"_s }) {
        settings.connectChannel(channel);
        save(u"settings-connect-"_s + channel.toLower(), channel == u"SMS" ? Look::LightSmall : Look::Light);
        settings.connectForm()->close();
    }
    settings.connectChannel(u"EMAIL"_s);
    save(u"settings-connect-email"_s, Look::Dark);
    MailForm& form = *settings.mailForm();
    const auto submit = [&](const QString& address, const QString& password) {
        form.close();
        form.open();
        form.address()->type(address);
        form.password()->type(password);
        form.submit();
    };
    const auto rest = [&] {
        while (form.busy())
            wait(Milliseconds(50));
    };
    submit(u"marta@patience.example"_s, u"twelve letters"_s);
    save(u"settings-mail-finding"_s, Look::Light);
    submit(u"marta@studio.example"_s, u"twelve letters"_s);
    rest();
    save(u"settings-mail-confirm"_s, Look::Light);
    save(u"settings-mail-confirm"_s, Look::DarkSmall);
    submit(u"marta@vidal.example"_s, u"wrong"_s);
    rest();
    save(u"settings-mail-failed"_s, Look::Light);
    form.setServersShown(true);
    save(u"settings-mail-found"_s, Look::Dark);
    save(u"settings-mail-found"_s, Look::LightSmall);
    form.close();
}

}
