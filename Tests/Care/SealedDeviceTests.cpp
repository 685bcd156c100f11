#include "Care/Backup/SealedDevice.h"

#include "Foundation/Literals.h"

#include <QBuffer>
#include <QFile>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

QByteArray sealed(const QByteArray& content, const QString& passphrase)
{
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    SealingDevice sealing(file, passphrase);
    EXPECT_EQ(sealing.write(content), content.size());
    EXPECT_TRUE(sealing.finish());
    return file.data();
}

/// The content, or the error message.
QByteArray opened(QByteArray file, const QString& passphrase)
{
    QBuffer buffer(&file);
    buffer.open(QIODevice::ReadOnly);
    EXPECT_TRUE(isSealed(buffer));
    UnsealingDevice unsealing(buffer);
    if (const auto unlocked = unsealing.unlock(passphrase); !unlocked) {
        EXPECT_FALSE(unsealing.isOpen());
        return unlocked.error().message.toUtf8();
    }
    QByteArray content;
    QByteArray piece(50'000, '\0');
    for (;;) {
        const qint64 count = unsealing.read(piece.data(), piece.size());
        if (count < 0)
            return unsealing.errorString().toUtf8();
        if (count == 0)
            return content;
        content.append(piece.constData(), count);
    }
}

}

TEST(SealedDevice, opensOnlyWholeAndOnlyWithItsPassphrase)
{
    const QByteArray content = QByteArray("row ").repeated(40'000); // more than two blocks
    const QByteArray file = sealed(content, u"grüne Fliesen"_s);
    EXPECT_FALSE(file.contains("row row"));
    EXPECT_EQ(opened(file, u"grüne Fliesen"_s), content);
    EXPECT_EQ(opened(file, u"gru\u0308ne Fliesen"_s), content); // with a combining umlaut, as some keyboards type it
    EXPECT_EQ(opened(file, u"green tiles"_s), "The passphrase is wrong, or the file is damaged.");
    const QByteArray incomplete = "The file is damaged or incomplete.";
    constexpr qsizetype block = 65536 + 17;
    const qsizetype beginning = file.size() - 2 * block - (content.size() - 2 * 65536 + 17);
    EXPECT_EQ(opened(file.first(beginning + 2 * block), u"grüne Fliesen"_s), incomplete);
    EXPECT_EQ(opened(file + 'x', u"grüne Fliesen"_s), incomplete);
    QByteArray swapped = file;
    swapped[beginning + block + 5] = char(swapped[beginning + block + 5] ^ 1);
    EXPECT_EQ(opened(swapped, u"grüne Fliesen"_s), incomplete);
    const QByteArray damaged = "The beginning of the file is damaged.";
    for (const int cost : { 17 + 16, 17 + 16 + 8 }) { // more operations, more memory than is allowed
        QByteArray greedy = file;
        greedy.replace(cost, 8, QByteArray(8, '\x7f'));
        EXPECT_EQ(opened(greedy, u"grüne Fliesen"_s), damaged);
    }
    EXPECT_EQ(opened(file.first(beginning - 1), u"grüne Fliesen"_s), damaged);
    QBuffer other;
    other.setData('x' + file);
    other.open(QIODevice::ReadOnly);
    EXPECT_FALSE(isSealed(other));
    EXPECT_EQ(UnsealingDevice(other).unlock(u"grüne Fliesen"_s).error().message.toUtf8(), damaged);
}

TEST(SealedDevice, theLastBlockMayBeFull)
{
    const QByteArray full(2 * 65536, 'f');
    const QByteArray file = sealed(full, u"p"_s);
    EXPECT_EQ(opened(file, u"p"_s), full);
    EXPECT_EQ(opened(file + 'x', u"p"_s), "The file contains extra data.");
}

TEST(SealedDevice, aFullDiskIsAnError)
{
    QFile full(u"/dev/full"_s);
    ASSERT_TRUE(full.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    SealingDevice none(full, u"p"_s);
    EXPECT_FALSE(none.isOpen());
    EXPECT_EQ(none.errorString(), full.errorString());
    EXPECT_FALSE(none.finish());
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    SealingDevice later(file, u"p"_s);
    EXPECT_EQ(later.write(QByteArray(65536, 'x')), 65536) << "held back";
    file.close();
    EXPECT_EQ(later.write("y"), -1);
    EXPECT_FALSE(later.finish());
}
