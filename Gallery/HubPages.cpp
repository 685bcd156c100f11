#include "Gallery.h"
#include "Pages.h"

namespace corvane {

using namespace Qt::StringLiterals;

void drawHubs(Gallery& gallery)
{
    for (const char* hub : { "lumo", "gtm", "cx", "ops" }) {
        gallery.screens().shell.selectHub(QString::fromLatin1(hub));
        gallery.save(u"hub-"_s + QString::fromLatin1(hub), { qstrcmp(hub, "gtm") == 0 ? Look::Dark : Look::Light });
    }
    gallery.screens().shell.selectHub(u"inbox"_s);
}

}
