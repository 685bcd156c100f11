#include "Desk/CorvaneMenuBarView.h"
#include "Foundation/Literals.h"
#include "Gallery.h"
#include "Pages.h"

#include "Desk/ResourceMonitor.h"
#include "Shell/AppShell.h"

#include <QDir>
#include <QFile>

namespace corvane {

namespace {

struct PictureProcess {
    int pid;
    int megabytes;
    const char* commandLine;
};

constexpr PictureProcess processes[] = {
    { 2210, 1480, "/usr/lib/firefox-esr/firefox-esr" },
    { 3307, 912, "/usr/bin/node /usr/lib/node_modules/@anthropic-ai/claude-code/cli.js" },
    { 3341, 644, "/usr/bin/codex resume" },
    { 2875, 402, "/usr/lib/libreoffice/program/soffice.bin --calc" },
    { 4102, 318, "/usr/bin/corvane" },
    { 4120, 164, "/usr/bin/node /usr/share/corvane/engine/whatsapp.ts" },
    { 4124, 121, "/usr/bin/node /usr/share/corvane/engine/telegram.ts" },
    { 1904, 96, "/usr/bin/gnome-shell" },
    { 2051, 38, "/usr/bin/nautilus --gapplication-service" },
};

void write(const QString& path, const QByteArray& content)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(content);
}

void writeProcesses(const QString& root)
{
    write(root + u"/proc/meminfo"_s, "MemTotal: 16384000 kB\nZswapped: 2400000 kB\n");
    write(root + u"/proc/pressure/memory"_s, "some avg10=23.40 avg60=11.02 avg300=4.00 total=1\n");
    for (const PictureProcess& process : processes) {
        const QString folder = root + u"/proc/%1/"_s.arg(process.pid);
        QByteArray commandLine = process.commandLine;
        const QByteArray name = commandLine.split(' ').first().split('/').last().first(
            std::min<qsizetype>(15, commandLine.split(' ').first().split('/').last().size()));
        write(folder + u"cmdline"_s, commandLine.replace(' ', '\0') + '\0');
        write(folder + u"stat"_s,
            QByteArray::number(process.pid) + " (" + name + ") S 1 1 1 0 -1 0 0 0 0 0 0 0 0 0 0 0 0 0 77 0 "
                + QByteArray::number(process.megabytes * 256) + " 0\n");
    }
}

}

void drawToday(Gallery& gallery)
{
    Screens& screens = gallery.screens();
    const auto draw = [&](const QString& tab, std::initializer_list<Look> looks) {
        screens.today->setTab(tab);
        gallery.save(u"today-"_s + tab, looks);
    };
    writeProcesses(AppPaths::fromEnvironment().home + u"/system"_s);
    screens.shell->selectHub(u"today"_s);
    draw(u"now"_s, { Look::Light, Look::Dark, Look::LightSmall });
    draw(u"calendar"_s, { Look::Light });
    draw(u"approvals"_s, { Look::Dark });
    draw(u"calls"_s, { Look::Light });
    screens.today->setTab(u"ram"_s);
    gallery.app().resources().refresh();
    gallery.wait(Milliseconds(300));
    draw(u"ram"_s, { Look::Light, Look::Dark });
    screens.panel->setTab(u"ram"_s);
    gallery.savePanel(u"panel-ram"_s);
    screens.panel->setTab(u"now"_s);
    screens.today->setTab(u"now"_s);
    screens.shell->selectHub(u"inbox"_s);
}

}
