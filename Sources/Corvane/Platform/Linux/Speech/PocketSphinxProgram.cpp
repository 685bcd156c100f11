#include "Foundation/Literals.h"
#include "Platform/Linux/Speech/ChildRecogniser.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

namespace corvane {

namespace {

const QString models = u"/usr/share/pocketsphinx/model/en-us"_s;

QString pocketSphinxExecutable()
{
    return QFileInfo::exists(models + u"/en-us.lm.bin"_s) ? QStandardPaths::findExecutable(u"pocketsphinx_continuous"_s)
                                                          : QString();
}

/// An utterance is a line with all its words, then one line per word: "john 0.630 1.000 0.929128", in seconds. The
/// first line is empty if nothing was understood.
void hear(const QString& line, QList<HeardSpeech>& heard)
{
    static const QRegularExpression word(uR"(^(\S+) (\d+\.\d{3}) (\d+\.\d{3}) \d\.\d+$)"_s);
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
                return QStringList { u"-infile"_s, soundPath, u"-time"_s, u"yes"_s, u"-hmm"_s, models + u"/en-us"_s,
                    u"-lm"_s, models + u"/en-us.lm.bin"_s, u"-dict"_s, models + u"/cmudict-en-us.dict"_s, u"-logfn"_s,
                    u"/dev/null"_s };
            },
        .hear = hear,
        .describeFailure =
            [](int) {
                return u"The basic recogniser ended unexpectedly."_s;
            } };
}

}
