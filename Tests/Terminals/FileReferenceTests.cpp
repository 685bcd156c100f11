#include "Foundation/Literals.h"
#include "Support/TemporaryHome.h"
#include "Terminals/FileReference.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSysInfo>
#include <QUrl>
#include <gtest/gtest.h>

namespace corvane {

TEST(FileReference, whatACompilerPrintsLeadsToTheFileThatIsThere)
{
    TemporaryHome home;
    const QString folder = home.paths().home;
    QDir(folder).mkpath(u"src/ä"_s);
    QFile file(folder + u"/src/ä/main.cpp"_s);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const auto at = [&](const QString& text) {
        const auto found = fileReference(text, folder + "/src"_L1, folder);
        return found ? u"%1:%2:%3"_s.arg(found->path.mid(folder.size())).arg(found->line).arg(found->column)
                     : QString();
    };
    EXPECT_EQ(at(u"ä/main.cpp:12:5"_s), u"/src/ä/main.cpp:12:5"_s);
    EXPECT_EQ(at(u"../src/ä/main.cpp:3"_s), u"/src/ä/main.cpp:3:0"_s);
    EXPECT_EQ(at(u"~/src/ä/main.cpp:3"_s), u"/src/ä/main.cpp:3:0"_s);
    EXPECT_EQ(at(file.fileName() + u":9"_s), u"/src/ä/main.cpp:9:0"_s);
    for (const char* none : { "ä/main.cpp", "main.cpp:3", "ä:3", "12:30", "https://a.example:80", "ä/main.cpp:3 " })
        EXPECT_EQ(at(QString::fromUtf8(none)), QString()) << none;
    const auto match = fileReferencePattern().match(u"  in (./a-b/c.py:7) and"_s);
    EXPECT_EQ(match.captured(), u"./a-b/c.py:7"_s);

    const QUrl address(u"file://"_s + QSysInfo::machineHostName() + file.fileName() + u"#12"_s);
    EXPECT_EQ(fileOfAddress(address), (FileReference { file.fileName(), 12, 0 }));
    EXPECT_EQ(fileOfAddress(QUrl(u"file://localhost"_s + file.fileName())), (FileReference { file.fileName(), 0, 0 }));
    EXPECT_EQ(fileOfAddress(QUrl(u"https://localhost"_s + file.fileName())), std::nullopt);
    EXPECT_EQ(fileOfAddress(QUrl(u"file://elsewhere.example"_s + file.fileName())), std::nullopt);
    EXPECT_EQ(fileOfAddress(QUrl(u"file:///no/such/file"_s)), std::nullopt);

    const auto words = [](const QString& editor, int line) {
        QString words;
        for (const std::string& each : editorCommand(editor, { u"/tmp/a b.c"_s, line, 0 }).arguments)
            words += u'|' + QString::fromStdString(each);
        return words;
    };
    EXPECT_EQ(words(u"/usr/bin/nvim -p"_s, 7), u"|-c|exec /usr/bin/nvim -p \"$@\"|sh|+7|/tmp/a b.c"_s);
    EXPECT_EQ(words(u"code -w"_s, 7), u"|-c|exec code -w \"$@\"|sh|-g|/tmp/a b.c:7"_s);
    EXPECT_EQ(words(u"/opt/hx"_s, 7), u"|-c|exec /opt/hx \"$@\"|sh|/tmp/a b.c:7"_s);
    EXPECT_EQ(words(u"codium"_s, 7), u"|-c|exec codium \"$@\"|sh|-g|/tmp/a b.c:7"_s);
    EXPECT_EQ(words(u"codium"_s, 0) + words(u"hx"_s, 0),
        u"|-c|exec codium \"$@\"|sh|/tmp/a b.c|-c|exec hx \"$@\"|sh|/tmp/a b.c"_s);
    const terminal::Command command = editorCommand(u"vi"_s, { u"/tmp/a b.c"_s, 1, 0 });
    EXPECT_EQ(command.program + ' ' + command.directory, "/bin/sh /tmp");
    EXPECT_EQ(words(u"ed"_s, 7), u"|-c|exec ed \"$@\"|sh|/tmp/a b.c"_s);
    EXPECT_EQ(words(u"vi"_s, 0), u"|-c|exec vi \"$@\"|sh|/tmp/a b.c"_s);
}

}
