// Compares the terminal's GPU rendering (Mesa's software OpenGL on a private X server) with the painter's images.

#include "Foundation/Literals.h"
#include "Foundation/SystemScheduler.h"
#include "Support/Await.h"
#include "UI/Terminals/TerminalItem.h"

#include <QGuiApplication>
#include <QPainter>
#include <QProcess>
#include <QQuickWindow>
#include <gtest/gtest.h>

namespace corvane {

namespace {

int largestDifference(const QImage& one, const QImage& other)
{
    int largest = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            const QRgb a = one.pixel(x, y);
            const QRgb b = other.pixel(x, y);
            largest = std::max({ largest, std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                std::abs(qBlue(a) - qBlue(b)) });
        }
    }
    return largest;
}

}

TEST(TerminalScene, aGpuDrawsThePaintersPixels)
{
    SystemScheduler scheduler;
    const terminal::Command program { "/bin/sh",
        { "-c",
            R"(printf '\033[?25lplain \033[1;31mbold\033[m \033[3mitalic\033[m \033[7mreverse\033[m \033[2mfaint\033[m\r\n'
            printf '\033[48;2;20;60;90m\033[38;2;250;200;90mcolours\033[m \033[4mline\033[4:3mcurly\033[m \033[9mstrike\033[m\r\n'
            printf 'Grüße, 漢字かな, 👩‍🚀 ✔️ \033[32m┌─┬╮░▓█⣿\033[m\r\n\033#6double width\r\ndone'; cat)" },
        {}, {}, {} };
    LumoTerminalSession session({ .title = u"test"_s, .command = program }, scheduler);
    QQuickWindow window;
    window.resize(640, 200);
    TerminalItem item;
    item.setParentItem(window.contentItem());
    item.setSize(window.size());
    item.setSession(&session);
    window.show();
    ASSERT_TRUE(await([&] { return item.shownText().contains(u"done"_s); }));
    ASSERT_TRUE(QSGRendererInterface::isApiRhiBased(window.rendererInterface()->graphicsApi()));

    terminal::Snapshot snapshot;
    ASSERT_TRUE(session.snapshot(snapshot));
    const TerminalLook look = TerminalLook::of(snapshot);
    TerminalPainter painter(terminalFontFamily(), qRound(item.fontSize() * window.effectiveDevicePixelRatio()));
    QImage expected(window.size() * window.effectiveDevicePixelRatio(), QImage::Format_RGB32);
    expected.fill(QRgb(0xff000000 | look.ground()));
    QPainter canvas(&expected);
    for (size_t row = 0; row < snapshot.rows.size(); ++row) {
        const QImage image = painter.row(snapshot.rows[row], snapshot.size.columns, look);
        canvas.drawImage(0, int(row) * painter.cell().height(), image);
    }
    canvas.end();
    const QImage drawn = window.grabWindow();
    ASSERT_EQ(drawn.size(), expected.size());
    EXPECT_LE(largestDifference(drawn, expected), 1);
    const QString folder = qEnvironmentVariable("CORVANE_PICTURES"); // saves the images for inspection
    if (!folder.isEmpty() && drawn.save(folder + u"/drawn.png"_s))
        expected.save(folder + u"/expected.png"_s);
}

}

int main(int argc, char** argv)
{
    QProcess server;
    server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    server.start("Xvfb", { "-displayfd", "1", "-nolisten", "tcp", "-screen", "0", "800x600x24" });
    while (server.waitForReadyRead() && !server.canReadLine()) { }
    qputenv("DISPLAY", ':' + server.readLine().trimmed());
    qputenv("QT_QPA_PLATFORM", "xcb");
    qputenv("LIBGL_ALWAYS_SOFTWARE", "1");
    qunsetenv("QT_QUICK_BACKEND");
    int result = 0;
    {
        const QGuiApplication application(argc, argv);
        testing::InitGoogleTest(&argc, argv);
        result = RUN_ALL_TESTS();
    }
    server.terminate();
    server.waitForFinished();
    return result;
}
