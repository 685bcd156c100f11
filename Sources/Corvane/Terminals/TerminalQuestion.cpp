#include "Terminals/TerminalQuestion.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"

namespace corvane {

namespace {

constexpr qsizetype largestClipboard = 1 << 20;

QString quoted(const QString& text)
{
    constexpr int most = 60;
    const QString line = firstCharacters(singleLine(text), most);
    return u'“' + line + (line.size() < singleLine(text).size() ? u"…”"_s : u"”"_s);
}

}

void TerminalQuestion::askToClose(LumoTerminalSession& session, const QString& program)
{
    ask({ Subject::Close, u"%1 is still running. Closing the terminal ends it."_s.arg(program), u"Close"_s,
        u"Keep open"_s, &session });
}

void TerminalQuestion::askToPaste(LumoTerminalSession& session, const QString& text)
{
    const auto lines = text.trimmed().count(u'\n') + 1;
    const QString words = lines == 1 ? u"Paste this line? The program in the terminal acts on it at once: %1"_s
                                     : u"Paste %2 lines? The program in the terminal acts on each at once: %1"_s;
    ask({ Subject::Paste, words.arg(quoted(text), QString::number(lines)), u"Paste"_s, u"Cancel"_s, &session, text });
}

void TerminalQuestion::askForClipboard(LumoTerminalSession& session, const QString& text)
{
    // A program must not replace a question that the user is about to answer.
    if (!m_asked.text.isEmpty() || text.size() > largestClipboard)
        return;
    ask({ Subject::Clipboard,
        u"A program in %1 wants to put this on the clipboard: %2"_s.arg(session.label(), quoted(text)), u"Allow"_s,
        u"Refuse"_s, &session, text });
}

bool TerminalQuestion::askToQuit(const QStringList& programs)
{
    if (m_asked.subject == Subject::Quit || programs.isEmpty())
        return false;
    const QString verb = programs.size() == 1 ? u"is"_s : u"are"_s;
    ask({ Subject::Quit,
        u"%1 %2 still running in a terminal. Quitting Corvane ends that."_s.arg(programs.join(u", "_s), verb),
        u"Quit"_s, u"Keep running"_s });
    return true;
}

void TerminalQuestion::tell(LumoTerminalSession& session, const QString& text)
{
    ask({ Subject::None, text, {}, u"Close"_s, &session });
}

void TerminalQuestion::withdraw(const LumoTerminalSession& session)
{
    if (m_asked.session == &session)
        ask({});
}

void TerminalQuestion::ask(const Asked& asked)
{
    m_asked = asked;
    Q_EMIT changed();
}

void TerminalQuestion::answer(bool yes)
{
    const Asked asked = m_asked;
    ask({});
    if (!yes)
        return;
    switch (asked.subject) {
    case Subject::Close:
        if (asked.session)
            Q_EMIT closeConfirmed(asked.session);
        break;
    case Subject::Paste:
        if (asked.session)
            Q_EMIT pasteConfirmed(asked.session, asked.data);
        break;
    case Subject::Clipboard:
        Q_EMIT clipboardGranted(asked.data);
        break;
    case Subject::Quit:
        Q_EMIT quitConfirmed();
        break;
    case Subject::None:
        break;
    }
}

}
