#pragma once

#include "Platform/CallAudio.h"
#include "Platform/SleepInhibitor.h"

#include <QFile>
#include <QPointer>

namespace corvane {

/// Call audio set by the test. Its tracks are files that contain `sound`. Every call is answered at once.
class FakeCallAudio final : public CallAudio {
public:
    class Track final : public TrackRecording {
    public:
        Track(const QString& path, const QByteArray& sound)
            : m_path(path)
        {
            QFile file(path);
            made = file.open(QIODevice::WriteOnly) && file.write(sound) == sound.size();
        }

        double elapsedSeconds() const override { return seconds; }
        double level() override { return loudness; }
        bool hasSource() const override { return source; }
        void stop(Done done) override { done(failing.isEmpty() ? Result<void>() : failure(failing)); }
        void close() override { }
        void cancel() override { QFile::remove(m_path); }

        bool made = false;
        double seconds = 0;
        double loudness = 0;
        bool source = true;
        QString failing; ///< why `stop` fails; empty if it succeeds

    private:
        const QString m_path;
    };

    std::unique_ptr<TrackRecording> recordMicrophone(const QString& path) override { return record(path, microphone); }
    std::unique_ptr<TrackRecording> recordSystem(const QString& path, const QString& binary, qint64) override
    {
        recordedBinary = binary;
        return record(path, system);
    }
    void findSystemAudio(std::function<void(const Result<void>&)> answer) override
    {
        answer(noOutput.isEmpty() ? Result<void>() : failure(noOutput));
    }
    void findApplications(std::function<void(const QList<SoundApplication>&)> answer) override { answer(applications); }
    void repair(const QString& path, TrackRecording::Done done) override
    {
        repaired.append(path);
        done({});
    }

    QPointer<Track> microphone; ///< the latest one, while it exists
    QPointer<Track> system;
    QByteArray sound = "sound";
    QString noOutput; ///< why system audio cannot be recorded; empty if it can
    bool broken = false; ///< no track can be started
    QString recordedBinary;
    QList<SoundApplication> applications;
    QStringList repaired;

private:
    std::unique_ptr<TrackRecording> record(const QString& path, QPointer<Track>& last)
    {
        auto made = std::make_unique<Track>(path, sound);
        last = made.get();
        return broken ? nullptr : std::move(made);
    }
};

/// Counts the locks that are held.
class FakeSleepInhibitor final : public SleepInhibitor {
public:
    std::unique_ptr<Hold> hold(const QString&) override
    {
        struct Lock final : Hold {
            explicit Lock(int& held)
                : count(held)
            {
                ++count;
            }
            ~Lock() override { --count; }
            int& count;
        };
        return std::make_unique<Lock>(held);
    }

    int held = 0;
};

}
