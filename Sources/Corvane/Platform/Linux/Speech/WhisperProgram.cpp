#include "Foundation/Literals.h"
#include "Platform/Linux/Speech/ChildRecogniser.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>
#include <algorithm>

namespace corvane {

namespace {

constexpr int mostThreads = 8; ///< more do not make it faster
constexpr int unreadableModel = 3; ///< the exit code

/// whisper.cpp's command line tool is installed next to the program, under its own name.
QString whisperExecutable()
{
    const QFileInfo file(QCoreApplication::applicationDirPath() + u"/corvane-whisper"_s);
    return file.isFile() && file.isExecutable() ? file.absoluteFilePath() : QString();
}

qint64 timeOf(const QRegularExpressionMatch& match, int first)
{
    const auto part = [&](int index) {
        return match.capturedView(first + index).toLongLong();
    };
    return ((part(0) * 60 + part(1)) * 60 + part(2)) * 1000 + part(3);
}

/// "[00:00:00.000 --> 00:00:05.120]   What was said." Any other line continues the previous text.
void hear(const QString& line, QList<HeardSpeech>& heard)
{
    static const QRegularExpression stretch(
        uR"(^\[(\d+):(\d\d):(\d\d)\.(\d{3}) --> (\d+):(\d\d):(\d\d)\.(\d{3})\]\s*(.*)$)"_s);
    if (const auto match = stretch.match(line); match.hasMatch())
        heard.append({ timeOf(match, 1), timeOf(match, 5), match.captured(9).trimmed() });
    else if (!line.isEmpty() && !heard.isEmpty())
        heard.last().text += QLatin1Char(' ') + line;
}

QString describeFailure(int code)
{
    return code == unreadableModel ? u"The speech model cannot be read."_s
                                   : u"The speech recogniser ended unexpectedly."_s;
}

}

RecogniserProgram whisperProgram()
{
    const QString threads = QString::number(std::clamp(QThread::idealThreadCount(), 1, mostThreads));
    return { .executable = whisperExecutable(),
        .wantsHeader = true,
        .arguments =
            [threads](const SpeechJob& job, const QString& soundPath) {
                return QStringList { u"-m"_s, job.model, u"-f"_s, soundPath, u"-l"_s, job.language, u"-t"_s, threads,
                    u"-np"_s };
            },
        .hear = hear,
        .describeFailure = describeFailure };
}

}
