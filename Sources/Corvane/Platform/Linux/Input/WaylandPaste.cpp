#include "Platform/Linux/Input/WaylandPaste.h"

#include "Foundation/Literals.h"

#include <QProcess>
#include <QStandardPaths>
#include <algorithm>
#include <optional>

namespace corvane {

namespace {

constexpr int answerMs = 1000;
const QString copy = u"wl-copy"_s;
const QString paste = u"wl-paste"_s;
const QString press = u"wtype"_s;
const QString plainText = u"text/plain;charset=utf-8"_s;

/// The arguments that name each selection.
const QList<QStringList>& selections()
{
    static const QList<QStringList> both { {}, { u"--primary"_s } };
    return both;
}

/// What the program prints, or nothing if it fails or takes too long.
std::optional<QByteArray> output(const QString& program, const QStringList& arguments, const QByteArray& input = {})
{
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    if (program == copy) // it stays in the background and holds what it inherits
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

bool hasPasteTools()
{
    return std::ranges::none_of(QStringList { copy, paste, press },
        [](const QString& program) { return QStandardPaths::findExecutable(program).isEmpty(); });
}

PastedText pasteWithTools(const QString& text)
{
    PastedText pasted;
    for (const QStringList& selection : selections())
        pasted.kept.append(contentOf(selection));
    for (const QStringList& selection : selections()) {
        if (!put(selection, { plainText, text.toUtf8() }))
            return pasted;
    }
    const QStringList shiftInsert { u"-M"_s, u"shift"_s, u"-k"_s, u"Insert"_s, u"-m"_s, u"shift"_s };
    pasted.outcome = output(press, shiftInsert) ? InsertionOutcome::Inserted : InsertionOutcome::Copied;
    return pasted;
}

void giveBackSelections(const KeptSelections& kept, const QString& text)
{
    if (contentOf({}).bytes != text.toUtf8())
        return;
    for (qsizetype i = 0; i < kept.size(); ++i)
        put(selections().at(i), kept.at(i));
}

}
