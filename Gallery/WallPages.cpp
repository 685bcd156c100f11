#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Shell/LoginWallView.h"
#include "Web/SessionStore.h"

namespace corvane {

void drawWall(Gallery& gallery)
{
    gallery.app().session().signOut();
    gallery.save(u"wall-signed-out"_s, { Look::Light, Look::DarkSmall });
    gallery.screens().wall->setEmail(u"marta@tallervidal.example"_s);
    gallery.screens().wall->setPassword(u"twelve letters"_s);
    gallery.save(u"wall-filled"_s, { Look::Dark });
}

}
