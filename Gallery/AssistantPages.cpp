#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Inbox/InboxView.h"
#include "Pages.h"
#include "Settings/IntegrationsView.h"
#include "Shell/AppShell.h"

namespace corvane {

void drawAssistant(Gallery& gallery)
{
    InboxView& inbox = *gallery.screens().inbox;
    gallery.openThread(u"Megan Price"_s);
    gallery.model().says
        = u"Four of the blue ones, and I was not even there! Thank you, Megan. I told Petra Lindqvist that she "
          u"can fetch hers on Thursday at 16:30."_s;
    inbox.reply()->assistant()->draftReply();
    gallery.save(u"assistant-draft"_s, { Look::Light, Look::Dark, Look::LightSmall });
    inbox.reply()->assistant()->accept();
    gallery.save(u"assistant-taken"_s, { Look::Light });
    gallery.model().says.clear();
    inbox.reply()->assistant()->rewrite(u"shorten"_s);
    gallery.save(u"assistant-busy"_s, { Look::Light });
    inbox.reply()->assistant()->dismiss();
    gallery.press(Qt::Key_J, Qt::ControlModifier);
    for (const int key : { Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Right })
        gallery.press(key);
    gallery.save(u"assistant-menu"_s, { Look::Light, Look::DarkSmall });
    gallery.press(Qt::Key_Escape);
    gallery.press(Qt::Key_Escape);
    inbox.reply()->composer()->setText({});

    gallery.model().says
        = u"- Situation: Megan keeps the studio open and asks what to do with a visitor [M].\n- Key points:\n"
          u"  - The visitor bought four of the blue ones [M].\n  - She paid in cash; it is in the tin [M].\n"
          u"- Next action: thank her and count the tin [M]."_s;
    inbox.reply()->summary()->summarize();
    gallery.save(u"assistant-summary"_s, { Look::Light, Look::Dark });
    inbox.reply()->summary()->dismiss();
    gallery.press(Qt::Key_J, Qt::ControlModifier);
    for (const int key : { Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Return })
        gallery.press(key);
    gallery.model().says
        = u"She sold four of the blue ones for cash and put the money in the tin.\n\nThe local context does not "
          u"say how much it was."_s;
    if (QQuickItem* question = gallery.item(u"askLumo.question"_s))
        question->setProperty("text", u"What did she sell today?"_s);
    inbox.reply()->askLumo()->ask(u"What did she sell today?"_s);
    gallery.save(u"assistant-ask"_s, { Look::Light, Look::Dark });
    gallery.press(Qt::Key_Escape);

    gallery.model().setReason(u"No model server answers at http://127.0.0.1:11434 or http://127.0.0.1:8080."_s);
    inbox.reply()->assistant()->draftReply();
    gallery.save(u"assistant-missing"_s, { Look::Light, Look::Dark });
    inbox.reply()->assistant()->dismiss();
    gallery.screens().settings->setSection(u"assistant"_s);
    gallery.screens().shell->openSettings();
    gallery.save(u"settings-assistant-missing"_s, { Look::Light });
    gallery.screens().shell->closeSettings();
    gallery.model().setReason({});
}

}
