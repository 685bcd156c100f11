#pragma once

#include "Platform/Microphone.h"

#include <QFile>
#include <QPointer>

namespace corvane {

/// A microphone controlled by the test. Its recordings are files that contain "sound", or other bytes set by the test.
class FakeMicrophone final : public Microphone {
public:
    class Recording final : public MicrophoneRecording {
    public:
        explicit Recording(const QString& path)
            : m_path(path)
        {
        }

        double elapsedSeconds() const override { return seconds; }
        double level() override { return loudness; }

        bool stop() override
        {
            if (seconds == 0) {
                cancel();
                return false;
            }
            QFile file(m_path);
            return file.open(QIODevice::WriteOnly) && file.write(sound) == sound.size();
        }

        void cancel() override { QFile::remove(m_path); }

        double seconds = 0;
        double loudness = 0;
        QByteArray sound = "sound";

    private:
        const QString m_path;
    };

    void requestAccess(std::function<void(MicrophoneAccess)> answer) override { m_answer = std::move(answer); }

    std::unique_ptr<MicrophoneRecording> record(const QString& path) override
    {
        if (broken)
            return nullptr;
        auto made = std::make_unique<Recording>(path);
        recording = made.get();
        return made;
    }

    void answer(MicrophoneAccess access) { m_answer(access); }

    QPointer<Recording> recording; ///< the latest one, while it exists
    bool broken = false; ///< no recording can be started

private:
    std::function<void(MicrophoneAccess)> m_answer;
};

}
