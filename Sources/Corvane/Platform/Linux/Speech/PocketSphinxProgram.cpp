#include "Platform/Linux/Speech/ChildRecogniser.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace corvane {

namespace {

const QString models = QStringLiteral("/usr/share/pocketsphinx/model/en-us");

QString pocketSphinxExecutable()
{
    return QFileInfo::exists(models + QStringLiteral("/en-us.lm.bin"))
        ? QStandardPaths::findExecutable(QStringLiteral("pocketsphinx_continuous"))
        : QString();
}

/// An utterance comes as a line of its words, then a line a word: "john 0.630 1.000 0.929128", in seconds. Where it
/// understood nothing the first line is empty.
void hear(const QString& line, QList<HeardSpeech>& heard)
{
    static const QRegularExpression word(QStringLiteral(R"(^(\S+) (\d+\.\d{3}) (\d+\.\d{3}) \d\.\d+$)"));
    const auto match = word.match(line);
    if (!match.hasMatch()) {
        if (!line.isEmpty())
            heard.append({ -1, -1, line });
        return;
    }
    const QStringView name = match.capturedView(1);
    if (heard.isEmpty() || name.startsWith(QLatin1Char('<')) || name.startsWith(QLatin1Char('[')))
        return; // a silence or a noise
    HeardSpeech& last = heard.last();
    if (last.startMs < 0)
        last.startMs = qint64(match.capturedView(2).toDouble() * 1000);
    last.endMs = qint64(match.capturedView(3).toDouble() * 1000);
}

}

RecogniserProgram pocketSphinxProgram()
{
    return { .executable = pocketSphinxExecutable(),
        .wantsHeader = false,
        .arguments =
            [](const SpeechJob&, const QString& soundPath) {
                return QStringList { QStringLiteral("-infile"), soundPath, QStringLiteral("-time"),
                    QStringLiteral("yes"), QStringLiteral("-hmm"), models + QStringLiteral("/en-us"),
                    QStringLiteral("-lm"), models + QStringLiteral("/en-us.lm.bin"), QStringLiteral("-dict"),
                    models + QStringLiteral("/cmudict-en-us.dict"), QStringLiteral("-logfn"),
                    QStringLiteral("/dev/null") };
            },
        .hear = hear,
        .describeFailure =
            [](int) {
                return QStringLiteral("The basic recogniser ended unexpectedly.");
            } };
}

}
