// Renders every screen and state of the window into a folder of images. The clock stands still, so that each run draws
// the same.

#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Platform/Linux/Decode/DecodeChild.h"

#include <QDir>
#include <QGuiApplication>
#include <QStyleHints>
#include <cstdio>
#include <cstring>

using namespace corvane;

namespace {

struct Page {
    QString name;
    void (*draw)(Gallery&);
};

/// In drawing order; the sign-in wall signs out, so it comes last.
const Page pages[] = {
    { u"inbox"_s, drawInbox },
    { u"assistant"_s, drawAssistant },
    { u"contact"_s, drawContact },
    { u"calendar"_s, drawCalendar },
    { u"today"_s, drawToday },
    { u"approvals"_s, drawApprovals },
    { u"settings"_s, drawSettings },
    { u"care"_s, drawCare },
    { u"dictation"_s, drawDictation },
    { u"hubs"_s, drawHubs },
    { u"dev"_s, drawDev },
    { u"terminals"_s, drawTerminals },
    { u"calls"_s, drawCalls },
    { u"web"_s, drawWeb },
    { u"wall"_s, drawWall },
};

}

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], "--decode") == 0)
        return runDecodeChild();
    QGuiApplication application(argc, argv);
    const QStringList wanted = application.arguments().mid(2);
    const qint64 nowMs = qEnvironmentVariable("CORVANE_DEMO_NOW").toLongLong();
    if (argc < 2 || nowMs <= 0) {
        std::fprintf(stderr, "usage: tools/gallery [DIR [PAGE...]]\n");
        return 2;
    }
    QGuiApplication::styleHints()->setCursorFlashTime(0);
    const QString folder = application.arguments().at(1);
    QDir().mkpath(folder);
    Gallery gallery(folder, nowMs);
    gallery.open();
    for (const Page& page : pages) {
        if (wanted.isEmpty() || wanted.contains(page.name))
            page.draw(gallery);
    }
    return 0;
}
