#include "Platform/Linux/Input/WaylandPaste.h"

#include "Foundation/Literals.h"

#include <QProcess>
#include <QStandardPaths>

namespace corvane {

namespace {

constexpr int answerMs = 1000;
const QString copy = u"wl-copy"_s;
const QString paste = u"wl-paste"_s;
const QString press = u"wtype"_s;
const QString plainText = u"text/plain;charset=utf-8"_s;

bool isInstalled(const QString& program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

// The arguments that select each selection.
const QStringList clipboard;
const QStringList primary { u"--primary"_s };

/// The output of the program; nothing if it fails or takes too long.
std::optional<QByteArray> output(const QString& program, const QStringList& arguments, const QByteArray& input = {})
{
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    if (program == copy) // it stays in the background and would keep inherited descriptors open
        process.setStandardOutputFile(QProcess::nullDevice());
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(answerMs)) {
        process.kill();
        process.waitForFinished();
        return std::nullopt;
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return std::nullopt;
    return program == copy ? QByteArray() : process.readAllStandardOutput();
}

SelectionContent contentOf(const QStringList& selection)
{
    const auto listed = output(paste, selection + QStringList { u"--list-types"_s });
    const QStringList types = QString::fromUtf8(listed.value_or(QByteArray())).split(u'\n', Qt::SkipEmptyParts);
    if (types.isEmpty())
        return {};
    const QString type = types.contains(plainText) ? plainText : types.first();
    const auto bytes = output(paste, selection + QStringList { u"--no-newline"_s, u"--type"_s, type });
    return bytes ? SelectionContent { type, *bytes } : SelectionContent();
}

bool put(const QStringList& selection, const SelectionContent& content)
{
    const QStringList what
        = content.type.isEmpty() ? QStringList { u"--clear"_s } : QStringList { u"--type"_s, content.type };
    return output(copy, selection + what, content.bytes).has_value();
}

}

bool hasClipboardTools()
{
    return isInstalled(copy) && isInstalled(paste);
}

bool hasKeyTool()
{
    return isInstalled(press);
}

std::optional<KeptSelections> lendSelections(const QString& text)
{
    const KeptSelections kept { contentOf(clipboard), contentOf(primary) };
    const SelectionContent content { plainText, text.toUtf8() };
    if (!put(clipboard, content))
        return std::nullopt;
    put(primary, content); // not every desktop has a primary selection
    return kept;
}

bool pressPaste()
{
    const QStringList shiftInsert { u"-M"_s, u"shift"_s, u"-k"_s, u"Insert"_s, u"-m"_s, u"shift"_s };
    return output(press, shiftInsert).has_value();
}

void giveBackSelections(const KeptSelections& kept, const QString& text)
{
    if (contentOf(clipboard).bytes != text.toUtf8())
        return;
    put(clipboard, kept.clipboard);
    put(primary, kept.primary);
}

}
