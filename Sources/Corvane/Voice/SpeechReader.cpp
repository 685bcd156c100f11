#include "Voice/SpeechReader.h"

#include "Foundation/Literals.h"
#include "Platform/AudioPlayer.h"
#include "Platform/ToolRunner.h"

#include <QFile>
#include <QLocale>
#include <QPointer>
#include <QStandardPaths>

namespace corvane {

namespace {

constexpr qsizetype longestText = 20'000; ///< characters; half an hour of speech

}

SpeechReader::SpeechReader(ToolRunner& tools, AudioPlayer& player, QObject* parent)
    : QObject(parent)
    , m_tools(tools)
    , m_player(player)
{
    connect(&player, &AudioPlayer::stateChanged, this, [this] {
        if (!m_playing)
            return;
        if (m_player.state() == AudioPlayer::State::Idle)
            end({});
        else if (m_player.state() == AudioPlayer::State::Failed)
            end(m_player.errorText());
    });
}

SpeechReader::~SpeechReader()
{
    m_cancel.cancel();
}

void SpeechReader::speak(const QString& id, const QString& text, const QString& language)
{
    stop();
    if (text.trimmed().isEmpty())
        return;
    m_speakingId = id;
    m_errorText.clear();
    m_cancel = {};
    Q_EMIT changed();
    read(text.left(longestText), language);
}

QCoro::Task<> SpeechReader::read(QString text, QString language)
{
    const QPointer<SpeechReader> self(this);
    const CancelHandle cancel = m_cancel;
    const QString program = QStandardPaths::findExecutable(u"espeak-ng"_s);
    if (program.isEmpty() || !m_folder.isValid()) {
        end(u"Reading aloud needs espeak-ng, which is not installed."_s);
        co_return;
    }
    const QString voice = language.isEmpty() ? QLocale::system().name().section(QLatin1Char('_'), 0, 0) : language;
    const QString path = m_folder.filePath(u"speech.wav"_s);
    for (const QString& each : { voice, u"en"_s }) { // if the first voice does not exist
        const QStringList arguments { u"--stdin"_s, u"-v"_s, each, u"-w"_s, path };
        const auto result = co_await m_tools.run(program, arguments, text.toUtf8(), cancel);
        if (!self || cancel.isCancelled())
            co_return;
        if (result && result->isSuccess()) {
            m_playing = true;
            m_player.play(path);
            co_return;
        }
    }
    end(u"The text could not be read aloud."_s);
}

void SpeechReader::stop()
{
    if (m_speakingId.isEmpty())
        return;
    m_cancel.cancel();
    const bool wasPlaying = std::exchange(m_playing, false);
    end({});
    if (wasPlaying)
        m_player.stop();
}

void SpeechReader::end(const QString& error)
{
    m_playing = false;
    m_speakingId.clear();
    m_errorText = error;
    QFile::remove(m_folder.filePath(u"speech.wav"_s));
    Q_EMIT changed();
}

}
