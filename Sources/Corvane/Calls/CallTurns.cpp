#include "Calls/CallTurns.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Platform/PrivateFile.h"

#include <QFile>
#include <QJsonArray>
#include <QSet>
#include <algorithm>
#include <tuple>

namespace corvane {

namespace {

constexpr qint64 echoDelayMs = 1500; // the time shift between two transcripts of the same sound
constexpr double echoShare = 0.6;
constexpr qint64 pauseMs = 4000; ///< a longer one starts a new turn

QString turnsPath(const QString& folder)
{
    return folder + u"/segments.json"_s;
}

QStringList wordsOf(const QString& text)
{
    QString words = folded(text);
    for (QChar& character : words) {
        if (!character.isLetterOrNumber())
            character = u' ';
    }
    return words.split(u' ', Qt::SkipEmptyParts);
}

/// Whether most words of the segment also occur in the meeting's audio at the same time.
bool isEcho(const SpeechSegment& heard, const QList<SpeechSegment>& meeting)
{
    QSet<QString> said;
    qint64 overlapMs = 0;
    for (const SpeechSegment& segment : meeting) {
        const qint64 from = std::max(heard.startMs, segment.startMs - echoDelayMs);
        const qint64 to = std::min(heard.endMs, segment.endMs + echoDelayMs);
        if (from > to)
            continue;
        overlapMs += to - from;
        for (const QString& word : wordsOf(segment.text))
            said.insert(word);
    }
    const QStringList words = wordsOf(heard.text);
    if (words.isEmpty() || overlapMs * 2 < heard.endMs - heard.startMs)
        return false;
    const auto repeated = std::ranges::count_if(words, [&](const QString& word) { return said.contains(word); });
    return double(repeated) >= echoShare * double(words.size());
}

QString vttTime(qint64 ms)
{
    const auto two = [](qint64 number) {
        return QString::number(number).rightJustified(2, u'0');
    };
    return u"%1:%2:%3.%4"_s.arg(two(ms / 3'600'000), two(ms / 60'000 % 60), two(ms / 1000 % 60),
        QString::number(ms % 1000).rightJustified(3, u'0'));
}

}

QList<CallTurn> turnsOf(const QList<SpeechSegment>& segments, const QString& speaker)
{
    QList<CallTurn> turns;
    for (const SpeechSegment& segment : segments)
        turns.append({ segment.startMs, segment.endMs, speaker, segment.text.simplified() });
    return turns;
}

QList<CallTurn> mergedTurns(const QList<SpeechSegment>& microphone, const QList<SpeechSegment>& meeting)
{
    QList<SpeechSegment> mine;
    std::ranges::copy_if(
        microphone, std::back_inserter(mine), [&](const SpeechSegment& segment) { return !isEcho(segment, meeting); });
    QList<CallTurn> pieces = turnsOf(mine, meSpeaker) + turnsOf(meeting, meetingSpeaker);
    std::ranges::sort(
        pieces, {}, [](const CallTurn& turn) { return std::tie(turn.startMs, turn.endMs, turn.speaker); });
    QList<CallTurn> turns;
    for (const CallTurn& piece : std::as_const(pieces)) {
        const bool goesOn
            = !turns.isEmpty() && turns.last().speaker == piece.speaker && piece.startMs - turns.last().endMs < pauseMs;
        if (goesOn) {
            turns.last().text += u' ' + piece.text;
            turns.last().endMs = std::max(turns.last().endMs, piece.endMs);
        } else {
            turns.append(piece);
        }
    }
    return turns;
}

QString textOf(const QList<CallTurn>& turns)
{
    QStringList lines;
    for (const CallTurn& turn : turns)
        lines.append(turn.speaker + u": "_s + turn.text);
    return lines.join(u'\n');
}

bool writeTurns(const QString& callFolder, const QList<CallTurn>& turns)
{
    QJsonArray array;
    for (const CallTurn& turn : turns) {
        array.append(QJsonObject { { u"startMs"_s, turn.startMs }, { u"endMs"_s, turn.endMs },
            { u"speaker"_s, turn.speaker }, { u"text"_s, turn.text } });
    }
    return writePrivateFile(turnsPath(callFolder), compactJson({ { u"segments"_s, array } }), Outlives::Program);
}

QList<CallTurn> readTurns(const QString& callFolder)
{
    QFile file(turnsPath(callFolder));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<CallTurn> turns;
    const QJsonObject content = jsonObject(file.readAll()).value_or(QJsonObject());
    for (const QJsonValue& value : content.value("segments"_L1).toArray()) {
        const QJsonObject turn = value.toObject();
        turns.append({ wholeNumber(turn, "startMs"_L1).value_or(0), wholeNumber(turn, "endMs"_L1).value_or(0),
            textValue(turn, "speaker"_L1).value_or(QString()), textValue(turn, "text"_L1).value_or(QString()) });
    }
    return turns;
}

QString webVtt(const QList<CallTurn>& turns)
{
    QString text = u"WEBVTT\n"_s;
    for (const CallTurn& turn : turns) {
        QString words = turn.text;
        words.replace(u'&', u"&amp;"_s).replace(u'<', u"&lt;"_s);
        words.replace(u"-->"_s, u"--&gt;"_s);
        text += u"\n%1 --> %2\n<v %3>%4\n"_s.arg(
            vttTime(turn.startMs), vttTime(std::max(turn.endMs, turn.startMs + 1)), turn.speaker, words);
    }
    return text;
}

}
