#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Inbox/InboxView.h"
#include "Pages.h"

namespace corvane {

namespace {

/// Scrolls the pane beside the thread to its top or bottom.
void scrollTo(Gallery& gallery, bool toTheFoot)
{
    if (QQuickItem* view = gallery.item(u"contact.view"_s))
        view->setProperty(
            "contentY", toTheFoot ? std::max(0.0, view->property("contentHeight").toDouble() - view->height()) : 0.0);
    gallery.wait(Milliseconds(100));
}

}

void drawContact(Gallery& gallery)
{
    InboxView& inbox = *gallery.screens().inbox;
    inbox.person()->select(u"ct:WHATSAPP:351900000190@s.whatsapp.net"_s);
    gallery.wait(Milliseconds(800)); // suggestions for merging appear after a delay
    gallery.save(u"contact-pane"_s, { Look::Light, Look::Dark });
    scrollTo(gallery, true);
    gallery.save(u"contact-pane-below"_s, { Look::Light, Look::Dark });
    scrollTo(gallery, false);
    const QAbstractItemModel* suggestions = inbox.person()->crm()->suggestions();
    inbox.person()->crm()->mergeWith(suggestions->index(0, 0).data(suggestions->roleNames().key("id")).toString());
    gallery.save(u"contact-merged"_s, { Look::Light });
    inbox.actions()->undo();
    if (QQuickItem* add = gallery.item(u"contact.addDeal"_s))
        QMetaObject::invokeMethod(add, "clicked");
    if (QQuickItem* name = gallery.item(u"addDeal.name"_s))
        name->setProperty("text", u"Large bowls for two collectors"_s);
    gallery.save(u"contact-add-deal"_s, { Look::Light, Look::Dark });
    gallery.press(Qt::Key_Escape);
    gallery.openThread(u"Tomás Herrera"_s);
    gallery.save(u"contact-pane-empty"_s, { Look::Light });
    gallery.window().resize(1040, 660);
    gallery.wait(Milliseconds(250));
    gallery.press(Qt::Key_I, Qt::ControlModifier);
    gallery.save(u"contact-pane-over"_s, { Look::LightSmall, Look::DarkSmall });
}

}
