#include "Platform/Passphrase.h"

#include "Support/Print.h"

#include <QByteArray>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdio_ext.h>
#include <termios.h>
#include <thread>
#include <unistd.h>

using namespace corvane;

namespace {

/// Puts another file in the place of a standard stream, and the old one back at the end.
class InPlaceOf {
public:
    InPlaceOf(int stream, int file)
        : m_stream(stream)
        , m_before(::fcntl(stream, F_DUPFD_CLOEXEC, 3))
    {
        ::dup2(file, stream);
    }
    ~InPlaceOf()
    {
        ::dup2(m_before, m_stream);
        ::close(m_before);
        ::__fpurge(stdin); // what the library has read ahead
        std::clearerr(stdin);
    }
    InPlaceOf(const InPlaceOf&) = delete;
    InPlaceOf& operator=(const InPlaceOf&) = delete;

private:
    const int m_stream;
    const int m_before;
};

/// What a user sees and types at a terminal, or what a script gives instead.
class PassphraseTest : public testing::Test {
protected:
    PassphraseTest() { EXPECT_EQ(::pipe2(errors.data(), O_CLOEXEC | O_NONBLOCK), 0); }
    ~PassphraseTest() override
    {
        for (const int end : errors)
            ::close(end);
    }

    /// Reads standard error until the text ends like this, or no more comes.
    QByteArray shown(const QByteArray& ending)
    {
        QByteArray text;
        while (!text.endsWith(ending)) {
            const bool isComplete = !isAsking;
            char byte = 0;
            if (::read(errors[0], &byte, 1) == 1)
                text += byte;
            else if (isComplete)
                break;
            else
                std::this_thread::yield();
        }
        return text;
    }

    QString given(const QByteArray& content)
    {
        std::array<int, 2> input {};
        EXPECT_EQ(::pipe2(input.data(), O_CLOEXEC), 0);
        EXPECT_EQ(::write(input[1], content.constData(), size_t(content.size())), content.size());
        ::close(input[1]);
        const InPlaceOf in(STDIN_FILENO, input[0]);
        const InPlaceOf err(STDERR_FILENO, errors[1]);
        const auto phrase = askPassphrase(Ask::Twice);
        ::close(input[0]);
        return phrase.value_or("nothing");
    }

    /// Types the lines at a terminal, each once its question is there. The echo must be off meanwhile, and on before
    /// and after.
    std::optional<QString> typed(Ask ask, const QByteArrayList& lines, const QByteArrayList& questions)
    {
        const int keyboard = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        ::grantpt(keyboard);
        ::unlockpt(keyboard);
        const int terminal = ::open(::ptsname(keyboard), O_RDWR | O_NOCTTY | O_CLOEXEC);
        const auto echoes = [terminal] {
            termios now {};
            EXPECT_EQ(::tcgetattr(terminal, &now), 0);
            return (now.c_lflag & tcflag_t(ECHO)) != 0;
        };
        EXPECT_TRUE(echoes());
        std::optional<QString> phrase;
        {
            const InPlaceOf in(STDIN_FILENO, terminal);
            const InPlaceOf err(STDERR_FILENO, errors[1]);
            isAsking = true;
            std::thread user([&] {
                for (qsizetype i = 0; i < lines.size(); ++i) {
                    EXPECT_EQ(shown(": "), questions.at(i));
                    EXPECT_FALSE(echoes());
                    const QByteArray line = lines.at(i) + '\n';
                    EXPECT_EQ(::write(keyboard, line.constData(), size_t(line.size())), line.size());
                }
                EXPECT_EQ(::write(keyboard, "\x04", 1), 1) << "the end of the input";
            });
            phrase = askPassphrase(ask);
            isAsking = false;
            user.join();
        }
        EXPECT_TRUE(echoes());
        ::close(terminal);
        ::close(keyboard);
        return phrase;
    }

    std::array<int, 2> errors {};
    std::atomic<bool> isAsking = false;
};

}

TEST_F(PassphraseTest, aScriptGivesItsFirstLineWithoutAQuestion)
{
    EXPECT_EQ(given("träger\r\nanother\n"), "träger");
    EXPECT_EQ(given("open end"), "open end");
    EXPECT_EQ(given("\nlater\n"), "nothing");
    EXPECT_EQ(shown("\n"), "The passphrase is empty.\n");
    EXPECT_EQ(given({}), "nothing");
    EXPECT_EQ(shown("\n"), "The passphrase is empty.\n");
}

TEST_F(PassphraseTest, aPersonTypesItUnseenAndANewOneTwice)
{
    EXPECT_EQ(typed(Ask::Once, { "s ü" }, { "Passphrase: " }), "s ü");
    EXPECT_EQ(shown("\n"), "\n");
    EXPECT_EQ(typed(Ask::Twice, { "same", "same" }, { "Passphrase: ", "\nThe same again: " }), "same");
    EXPECT_EQ(shown("\n"), "\n");
    EXPECT_EQ(typed(Ask::Twice, { "same", "other" }, { "Passphrase: ", "\nThe same again: " }), std::nullopt);
    EXPECT_EQ(shown(".\n"), "\nThe two differ.\n");
    EXPECT_EQ(typed(Ask::Twice, { "" }, { "Passphrase: " }), std::nullopt) << "nothing is not asked for again";
    EXPECT_EQ(shown(".\n"), "\nThe passphrase is empty.\n");
}
