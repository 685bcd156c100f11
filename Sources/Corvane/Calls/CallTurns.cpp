#include "Calls/CallTurns.h"

#include "Foundation/Json.h"
#include "Foundation/Text.h"
#include "Platform/PrivateFile.h"

#include <QFile>
#include <QJsonArray>
#include <QSet>
#include <algorithm>
#include <tuple>

namespace corvane {

namespace {

constexpr qint64 echoDelayMs = 1500; // how far two readings of one sound stand apart
constexpr double echoShare = 0.6;
constexpr qint64 pauseMs = 4000; ///< a longer one begins a new turn

QString turnsPath(const QString& folder)
{
    return folder + QStringLiteral("/segments.json");
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

/// Whether most words of the stretch are said by the meeting in the same moments.
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
    return QStringLiteral("%1:%2:%3.%4")
        .arg(two(ms / 3'600'000), two(ms / 60'000 % 60), two(ms / 1000 % 60),
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
        lines.append(turn.speaker + QStringLiteral(": ") + turn.text);
    return lines.join(u'\n');
}

bool writeTurns(const QString& callFolder, const QList<CallTurn>& turns)
{
    QJsonArray array;
    for (const CallTurn& turn : turns) {
        array.append(QJsonObject { { QStringLiteral("startMs"), turn.startMs }, { QStringLiteral("endMs"), turn.endMs },
            { QStringLiteral("speaker"), turn.speaker }, { QStringLiteral("text"), turn.text } });
    }
    return writePrivateFile(turnsPath(callFolder), compactJson({ { QStringLiteral("segments"), array } }));
}

QList<CallTurn> readTurns(const QString& callFolder)
{
    QFile file(turnsPath(callFolder));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<CallTurn> turns;
    const QJsonObject content = jsonObject(file.readAll()).value_or(QJsonObject());
    for (const QJsonValue& value : content.value(QLatin1StringView("segments")).toArray()) {
        const QJsonObject turn = value.toObject();
        turns.append({ wholeNumber(turn, QLatin1StringView("startMs")).value_or(0),
            wholeNumber(turn, QLatin1StringView("endMs")).value_or(0),
            textValue(turn, QLatin1StringView("speaker")).value_or(QString()),
            textValue(turn, QLatin1StringView("text")).value_or(QString()) });
    }
    return turns;
}

QString webVtt(const QList<CallTurn>& turns)
{
    QString text = QStringLiteral("WEBVTT\n");
    for (const CallTurn& turn : turns) {
        QString words = turn.text;
        words.replace(u'&', QStringLiteral("&amp;")).replace(u'<', QStringLiteral("&lt;"));
        words.replace(QStringLiteral("-->"), QStringLiteral("--&gt;"));
        text += QStringLiteral("\n%1 --> %2\n<v %3>%4\n")
                    .arg(vttTime(turn.startMs), vttTime(std::max(turn.endMs, turn.startMs + 1)), turn.speaker, words);
    }
    return text;
}

}
