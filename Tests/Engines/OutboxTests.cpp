#include "Engines/Outbox.h"
#include "Foundation/Literals.h"

#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace corvane;
namespace {

class OutboxTest : public testing::Test {
protected:
    QString file(const QString& name, const QByteArray& content)
    {
        home.write(name, content);
        return home.path(name);
    }

    static QByteArray contentOf(const OutgoingFile& file)
    {
        QFile opened(file.path);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray("nothing");
    }

    QStringList kept(const QString& place)
    {
        return QDir(home.paths().applicationSupport + u"/outbox/"_s + place)
            .entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    }

    static uint mode(const QString& path)
    {
        struct stat status {};
        return ::stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_mode & 07777 : 0;
    }

    TemporaryHome home;
    Outbox outbox { home.paths() };
};

}

TEST_F(OutboxTest, aPickedFileIsAPrivateCopyUnderASafeName)
{
    const auto plan = outbox.pick(file(u"plan.pdf"_s, "the plan"));
    ASSERT_TRUE(plan);
    home.write(u"plan.pdf"_s, "another");
    EXPECT_EQ(contentOf(*plan), "the plan") << "whatever becomes of the original";
    EXPECT_EQ(plan->name, u"plan.pdf"_s);
    EXPECT_EQ(plan->bytes, 8);
    EXPECT_EQ(outbox.asTheyLie({ *plan }), QList { *plan });
    EXPECT_EQ(mode(plan->path), 0600U);
    EXPECT_EQ(mode(QFileInfo(plan->path).path()), 0700U);

    const QString longName = QString(90, u'語') + u".txt"_s;
    const std::pair<QString, QString> names[] { { u".profile"_s, u"profile"_s }, { u"../../up"_s, u"_.._up"_s },
        { u"a\u202egnp.exe\n"_s, u"a_gnp.exe_"_s }, { u" "_s, u"file"_s }, { u"..."_s, u"file"_s } };
    for (const auto& [name, safe] : names)
        EXPECT_EQ(outbox.pick(name, "pasted")->name, safe);
    const auto cut = outbox.pick(longName, "pasted");
    ASSERT_TRUE(cut);
    EXPECT_TRUE(cut->name.endsWith(u".txt"));
    EXPECT_EQ(contentOf(*cut), "pasted");
}

TEST_F(OutboxTest, whatCannotBeCopiedIsRefusedInWordsAndLeavesNothing)
{
    const QString large = file(u"large.bin"_s, QByteArray(1000, 'x'));
    const QString pipe = home.path(u"pipe"_s);
    ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    const std::pair<QString, QString> refused[] {
        { large, u"large.bin can't be attached. It is too large."_s },
        { pipe, u"pipe can't be attached. It is not a regular file."_s },
        { u"/dev/zero"_s, u"zero can't be attached. It is not a regular file."_s },
        { home.path(u"gone"_s), u"gone can't be attached. No such file or directory."_s },
    };
    for (const auto& [path, words] : refused)
        EXPECT_EQ(outbox.pick(path, 999).error().message, words);
    EXPECT_FALSE(outbox.pick(home.path(u"."_s))) << "a folder";
    EXPECT_TRUE(outbox.pick(large, 1000));
    EXPECT_EQ(kept(u"picked"_s).size(), 1);
}

TEST_F(OutboxTest, aDraftGetsItsOwnCopyOfExactlyWhatWasPicked)
{
    const OutgoingFile plan = *outbox.pick(file(u"plan.pdf"_s, "the plan"));
    const OutgoingFile photo = *outbox.pick(u"photo.png"_s, "a photo");
    const auto copies = outbox.copyForDraft({ plan, photo });
    ASSERT_TRUE(copies);
    outbox.drop({ plan, photo });
    outbox.drop(*copies);
    EXPECT_EQ(kept(u"picked"_s), QStringList());
    EXPECT_EQ(outbox.asTheyLie(*copies), *copies) << "only picked files are dropped";

    OutgoingFile changed = *outbox.pick(u"note.txt"_s, "before");
    OutgoingFile elsewhere = changed;
    elsewhere.path = file(u"note.txt"_s, "before");
    EXPECT_FALSE(outbox.copyForDraft({ elsewhere })) << "a row may name any path";
    QFile opened(changed.path);
    ASSERT_TRUE(opened.open(QIODevice::WriteOnly));
    opened.write("after!");
    opened.close();
    EXPECT_FALSE(outbox.copyForDraft({ changed }));
    EXPECT_EQ(outbox.asTheyLie({ elsewhere }).first().bytes, -1);
    EXPECT_NE(outbox.asTheyLie({ changed }), QList { changed });
    QFile::remove(changed.path);
    ASSERT_TRUE(QFile::link(elsewhere.path, changed.path));
    EXPECT_EQ(outbox.asTheyLie({ changed }).first().bytes, -1) << "a link leads elsewhere";

    outbox.keepForDrafts({ copies->last() });
    EXPECT_EQ(kept(u"drafts"_s), QStringList { QFileInfo(QFileInfo(copies->last().path).path()).fileName() });
    outbox.keepPicked({});
    EXPECT_EQ(kept(u"picked"_s), QStringList());
}

TEST_F(OutboxTest, whatCannotBeCopiedIsSaidAndLeavesNothing)
{
    home.write(u"share/Corvane/outbox"_s, "a file where the folder belongs");
    const auto pasted = outbox.pick(u"shot.png"_s, QByteArray("picture"));
    ASSERT_FALSE(pasted);
    EXPECT_EQ(pasted.error().message, u"shot.png can't be attached. It couldn't be copied."_s);
    const auto picked = outbox.pick(file(u"plan.pdf"_s, "the plan"));
    ASSERT_FALSE(picked);
    EXPECT_TRUE(picked.error().message.startsWith(u"plan.pdf can't be attached. "_s));
    EXPECT_EQ(home.read(u"share/Corvane/outbox"_s), "a file where the folder belongs");
}
