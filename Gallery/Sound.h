#pragma once

// The audio devices of the machine shown in the images.

#include "Foundation/Literals.h"
#include "Platform/CallAudio.h"
#include "Platform/Microphone.h"

#include <QFile>

namespace corvane {

/// A microphone that grants access; voice notes use the real one.
class PictureMicrophone final : public Microphone {
public:
    explicit PictureMicrophone(std::unique_ptr<Microphone> real)
        : m_real(std::move(real))
    {
    }
    void requestAccess(std::function<void(MicrophoneAccess)> answer) override { answer(MicrophoneAccess::Granted); }
    std::unique_ptr<MicrophoneRecording> record(const QString& path) override { return m_real->record(path); }

private:
    std::unique_ptr<Microphone> m_real;
};

/// A call recording of twelve minutes.
class PictureTrack final : public TrackRecording {
public:
    double elapsedSeconds() const override { return 724; }
    double level() override { return 0.4; }
    bool hasSource() const override { return true; }
    void stop(Done done) override { done({}); }
    void close() override { }
    void cancel() override { }
};

class PictureCallAudio final : public CallAudio {
public:
    std::unique_ptr<TrackRecording> recordMicrophone(const QString&) override
    {
        return std::make_unique<PictureTrack>();
    }
    std::unique_ptr<TrackRecording> recordSystem(const QString&, const QString&, qint64) override
    {
        return std::make_unique<PictureTrack>();
    }
    void findSystemAudio(std::function<void(const Result<void>&)> answer) override { answer({}); }
    void findApplications(std::function<void(const QList<SoundApplication>&)> answer) override
    {
        answer({ { u"zoom"_s, u"Zoom"_s, true, true } });
    }
    void repair(const QString&, TrackRecording::Done done) override { done({}); }
};

}
