#include "Care/Backup/SealedDevice.h"

#include "Foundation/Literals.h"

#include <QBuffer>
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
    if (const auto unlocked = unsealing.unlock(passphrase); !unlocked)
        return unlocked.error().message.toUtf8();
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
    QByteArray greedy = file;
    greedy.replace(17 + 16 + 8, 8, QByteArray(8, '\x7f')); // requests more memory than there is
    EXPECT_EQ(opened(greedy, u"grüne Fliesen"_s), "The beginning of the file is damaged.");
}
