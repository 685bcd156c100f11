#include "Platform/Passphrase.h"

#include "Foundation/Literals.h"

#include <QFile>
#include <QTextStream>
#include <termios.h>
#include <unistd.h>

namespace corvane {

namespace {

/// Switches off the terminal's echo while it exists.
class Unseen {
public:
    Unseen()
    {
        ::tcgetattr(STDIN_FILENO, &m_before);
        termios silent = m_before;
        silent.c_lflag &= ~tcflag_t(ECHO);
        ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &silent);
    }
    ~Unseen() { ::tcsetattr(STDIN_FILENO, TCSAFLUSH, &m_before); }
    Unseen(const Unseen&) = delete;
    Unseen& operator=(const Unseen&) = delete;

private:
    termios m_before {};
};

QString readLine(QFile& input)
{
    QByteArray line = input.readLine();
    while (line.endsWith('\n') || line.endsWith('\r'))
        line.chop(1);
    return QString::fromUtf8(line);
}

}

std::optional<QString> askPassphrase(Ask ask)
{
    QTextStream errors(stderr);
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly | QIODevice::Unbuffered))
        return std::nullopt;
    QString phrase;
    if (::isatty(STDIN_FILENO) == 0) {
        phrase = readLine(input);
    } else {
        const Unseen unseen;
        errors << "Passphrase: " << Qt::flush;
        phrase = readLine(input);
        errors << '\n' << Qt::flush;
        if (ask == Ask::Twice && !phrase.isEmpty()) {
            errors << "The same again: " << Qt::flush;
            const bool same = readLine(input) == phrase;
            errors << '\n' << Qt::flush;
            if (!same) {
                errors << "The two differ.\n";
                return std::nullopt;
            }
        }
    }
    if (phrase.isEmpty()) {
        errors << "The passphrase is empty.\n";
        return std::nullopt;
    }
    return phrase;
}

}
