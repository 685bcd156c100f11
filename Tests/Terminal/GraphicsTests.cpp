#include "Probe.h"

#include "Terminal/Graphics/PictureHeader.h"
#include "Terminal/Graphics/Placeholders.h"
#include "Terminal/Graphics/Png.h"

#include <filesystem>
#include <fstream>
#include <png.h>
#include <unistd.h>

namespace corvane::terminal {

namespace {

std::string base64(std::string_view bytes)
{
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    for (size_t at = 0; at < bytes.size(); at += 3) {
        uint32_t group = 0;
        for (size_t i = 0; i < 3; ++i)
            group = group << 8 | (at + i < bytes.size() ? uint8_t(bytes[at + i]) : 0);
        for (size_t i = 0; i < 4; ++i)
            text += at + i <= bytes.size() ? alphabet[group >> (18 - 6 * i) & 63] : '=';
    }
    return text;
}

std::string command(std::string_view control, std::string_view payload = {})
{
    return concat("\x1b_G", control, ';', base64(payload), "\x1b\\");
}

std::string pixels(int count, std::string_view pixel = "\x01\x02\x03\xff")
{
    std::string bytes;
    for (int i = 0; i < count; ++i)
        bytes += pixel;
    return bytes;
}

std::string rect(const PlacementView& view)
{
    return concat(view.left, ' ', view.top, ' ', view.right, ' ', view.bottom);
}

std::string png()
{
    png_image image {};
    image.version = PNG_IMAGE_VERSION;
    image.width = 3;
    image.height = 2;
    image.format = PNG_FORMAT_RGB;
    const std::string rgb = "abcdefghijklmnopqr";
    png_alloc_size_t size = 0;
    png_image_write_to_memory(&image, nullptr, &size, 0, rgb.data(), 0, nullptr);
    std::string bytes(size, '\0');
    png_image_write_to_memory(&image, bytes.data(), &size, 0, rgb.data(), 0, nullptr);
    return bytes;
}

}

TEST(Graphics, imagesComeInChunksAndAreAnswered)
{
    Probe terminal;
    const std::string encoded = base64(pixels(20 * 30));
    terminal << "\x1b_Ga=T,f=32,s=20,v=30,i=5,p=9,m=1;" << encoded.substr(0, 1000) << "\x1b\\";
    EXPECT_EQ(terminal.ask("\x1b_Gm=0;" + encoded.substr(1000) + "\x1b\\"), "\x1b_Gi=5,p=9;OK\x1b\\");
    ASSERT_EQ(terminal.placements().size(), 1u);
    EXPECT_EQ(rect(terminal.placements()[0]), "0 0 2 2");
    EXPECT_EQ(terminal.where(), "1,2");
    EXPECT_EQ(terminal.images().find(5)->shown().pixels[2], 3);
    EXPECT_EQ(terminal.ask(command("a=q,f=24,s=1,v=1,i=6", "abc")), "\x1b_Gi=6;OK\x1b\\");
    EXPECT_EQ(terminal.images().count(), 1u);
    terminal << command("a=T,f=100,i=7,c=4", png());
    EXPECT_EQ(terminal.images().find(7)->shown().width, 3);
}

TEST(Graphics, badClaimsAreRefused)
{
    Config config;
    config.imageBytes = 4000;
    Probe terminal(20, 5, config);
    EXPECT_EQ(terminal.ask(command("a=t,s=100000,v=100000,i=1", "abcd")), "\x1b_Gi=1;EINVAL:bad dimensions\x1b\\");
    EXPECT_EQ(
        terminal.ask(command("a=t,s=2,v=2,i=1", "abcd")), "\x1b_Gi=1;ENODATA:less data than the dimensions say\x1b\\");
    EXPECT_EQ(terminal.ask(command("a=t,f=100,i=1", png().substr(0, 40))),
        "\x1b_Gi=1;EBADPNG:not a PNG within the limits\x1b\\");
    EXPECT_EQ(terminal.ask(command("a=p,i=8")), "\x1b_Gi=8;ENOENT:no such image\x1b\\");
    EXPECT_EQ(terminal.ask(command("a=t,s=40,v=40,i=1", pixels(1600))),
        "\x1b_Gi=1;EFBIG:larger than all images may be\x1b\\");
    EXPECT_EQ(terminal.ask(command("a=p,i=8,q=2")), "");
    // The budget has room for two of these; the oldest is evicted.
    for (const char* id : { "1", "2", "3" })
        terminal << command(concat("a=t,s=20,v=20,i=", id), pixels(400));
    EXPECT_EQ(terminal.images().find(1), nullptr);
    EXPECT_LE(terminal.images().bytes(), 4000u);
}

TEST(Graphics, otherFormatsKeepTheirPlaceUntilTheyAreDecoded)
{
    struct : Listener {
        void imageToDecode(uint32_t asked, int, int, std::span<const uint8_t> bytes) override
        {
            image = asked;
            size = bytes.size();
        }
        uint32_t image = 0;
        size_t size = 0;
    } listener;
    Probe terminal;
    terminal.setListener(&listener);
    const std::string gif = std::string("GIF89a\x28\0\x15\0", 10) + "...";
    terminal << "\x1b]1337;File=inline=1:" << base64(gif) << "\a";
    ASSERT_EQ(terminal.placements().size(), 1u);
    EXPECT_EQ(rect(terminal.placements()[0]), "0 0 4 2");
    EXPECT_EQ(listener.size, gif.size());
    terminal.setPicture(listener.image, { 2, 1, std::vector<uint8_t>(8, 7) });
    EXPECT_EQ(terminal.placements()[0].sourceWidth, 2);
    EXPECT_EQ(terminal.images().find(listener.image)->shown().pixels[7], 7);
    terminal.setListener(nullptr);
    const std::string picture = base64(png());
    terminal << "\x1b]1337;MultipartFile=inline=1\a\x1b]1337;FilePart=" << picture.substr(0, 9) << "\a";
    terminal << "\x1b]1337;FilePart=" << picture.substr(9) << "\a\x1b]1337;FileEnd\a";
    EXPECT_EQ(terminal.placements().size(), 2u);

    const auto sizeOf = [](std::string_view bytes) {
        const auto size = pictureSize({ reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size() });
        return size ? concat(size->width, 'x', size->height) : "none";
    };
    constexpr std::string_view frame("\xff\xc0\0\x11\x08\x01\0\x02\0", 9);
    // An EXIF orientation that rotates the image to portrait.
    constexpr std::string_view exif("\xff\xe1\0\x22"
                                    "Exif\0\0MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0\x06\0\0\0\0\0\0",
        36);
    EXPECT_EQ(sizeOf(concat("\xff\xd8", frame)), "512x256");
    EXPECT_EQ(sizeOf(concat("\xff\xd8", exif, frame)), "256x512");
    EXPECT_EQ(sizeOf(concat("\xff\xd8", exif)), "none");
    EXPECT_EQ(sizeOf(std::string_view("RIFF....WEBPVP8L....\x2f\x09\x40\x01\0", 25)), "10x6");
}

TEST(Graphics, filesAreReadOnlyWhereTheProtocolAllows)
{
    const auto folder = std::filesystem::temp_directory_path() / concat("tty-graphics-protocol-", getpid());
    std::filesystem::create_directory(folder);
    const std::string file = folder / "data";
    std::ofstream(file, std::ios::binary) << pixels(1);
    const std::string link = folder / "link";
    std::filesystem::create_symlink("/etc/passwd", link);
    Probe terminal;
    EXPECT_EQ(terminal.ask(command("a=t,t=f,s=1,v=1,i=1", file)), "\x1b_Gi=1;OK\x1b\\");
    EXPECT_TRUE(std::filesystem::exists(file));
    EXPECT_EQ(
        terminal.ask(command("a=t,t=f,s=1,v=1,i=2", link)), "\x1b_Gi=2;EPERM:leads out of the temporary folder\x1b\\");
    EXPECT_EQ(terminal.ask(command("a=t,t=f,s=1,v=1,i=2", "/dev/zero")), "\x1b_Gi=2;EPERM:not a file for images\x1b\\");
    EXPECT_EQ(terminal.ask(command("a=t,t=t,s=1,v=1,i=2", "/etc/passwd")),
        "\x1b_Gi=2;EPERM:leads out of the temporary folder\x1b\\");
    EXPECT_EQ(terminal.ask(command("a=t,t=t,s=1,v=1,i=3", file)), "\x1b_Gi=3;OK\x1b\\");
    EXPECT_FALSE(std::filesystem::exists(file));
    std::filesystem::remove_all(folder);
}

TEST(Graphics, placementsMoveWithTheTextAndAreDeleted)
{
    Probe terminal(20, 4);
    terminal << command("a=t,s=10,v=20,i=1,q=2", pixels(200)) << "\r\n" << command("a=p,i=1,p=1,c=3,r=2,z=5,C=1,q=2");
    terminal << command("a=p,i=1,p=2,P=1,Q=1,H=4,V=1,q=2") << "\x1b[4;1H\n";
    const auto views = terminal.placements();
    ASSERT_EQ(views.size(), 2u);
    EXPECT_EQ(rect(views[1]), "0 0 3 2");
    EXPECT_EQ(rect(views[0]), "4 1 5 2");
    terminal << command("a=d,d=z,z=5");
    EXPECT_TRUE(terminal.placements().empty());
    EXPECT_NE(terminal.images().find(1), nullptr);
    terminal << command("a=d,d=I,i=1");
    EXPECT_EQ(terminal.images().count(), 0u);
}

TEST(Graphics, placeholdersShowTheirPartOfTheImage)
{
    Probe terminal;
    terminal << command("a=t,s=20,v=40,i=42,q=2", pixels(800)) << command("a=p,U=1,i=42,c=2,r=2,q=2");
    terminal << "\x1b[38;5;42m\U0010eeee\u0305\u0305\U0010eeee\r\n\U0010eeee\u030d\u030d\x1b[m";
    const auto views = terminal.placements();
    ASSERT_EQ(views.size(), 2u);
    EXPECT_EQ(rect(views[0]), "0 0 2 1");
    EXPECT_EQ(views[0].sourceWidth, 20);
    EXPECT_EQ(rect(views[1]), "0 1 1 2");
    EXPECT_EQ(views[1].sourceX, 10);
    EXPECT_EQ(views[1].sourceY, 20);
    EXPECT_EQ(placeholderNumber(0x1d244), 296);
}

TEST(Graphics, animationsPlayByTheClock)
{
    Probe terminal;
    terminal << command("a=t,s=1,v=1,i=1,q=2", pixels(1))
             << command("a=f,i=1,s=1,v=1,z=100,q=2", pixels(1, "\x09\x09\x09\xff"));
    terminal << command("a=a,i=1,r=1,z=50") << command("a=a,i=1,s=3");
    EXPECT_EQ(terminal.tick(1'000'000'000), 50'000'000);
    terminal.tick(1'060'000'000);
    EXPECT_EQ(terminal.images().find(1)->shown().pixels[0], 9);
    terminal.tick(1'160'000'000);
    EXPECT_EQ(terminal.images().find(1)->shown().pixels[0], 1);
}

TEST(Graphics, sixelDrawsWithItsColours)
{
    Probe terminal;
    terminal << "\x1bP0;1q\"1;1;4;6#1;2;100;0;0#1!4~\x1b\\";
    ASSERT_EQ(terminal.placements().size(), 1u);
    const Bitmap& bitmap = terminal.images().find(terminal.placements()[0].image)->shown();
    EXPECT_EQ(bitmap.width, 4);
    EXPECT_EQ(bitmap.height, 6);
    EXPECT_EQ(std::string(bitmap.pixels.begin(), bitmap.pixels.begin() + 4), "\xff" + std::string(2, '\0') + "\xff");
    EXPECT_EQ(terminal.where(), "1,0");
    terminal << concat("\x1b]1337;File=inline=1;width=5:", base64(png()), "\x07");
    ASSERT_EQ(terminal.placements().size(), 2u);
    EXPECT_EQ(rect(terminal.placements()[1]), "0 1 5 3");
}

}
