#pragma once

#include "Support/Await.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/prctl.h>

namespace corvane {

enum class Microphones { None, One };

/// A private PulseAudio server without hardware. It has a loudspeaker and, if wanted, a microphone that hears a tone.
/// While it exists, clients in this process connect to it and to no other server.
class SoundServer {
public:
    explicit SoundServer(Microphones microphones)
        : m_microphones(microphones)
    {
        for (const char* variable : { "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH" })
            qputenv(variable, QFile::encodeName(m_folder.path()));
        qputenv("PULSE_COOKIE", QFile::encodeName(m_folder.filePath("cookie")));
        qputenv("PULSE_SERVER", QFile::encodeName("unix:" + socket()));
        start();
    }

    void start()
    {
        QStringList arguments { "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no", "-L",
            "module-native-protocol-unix auth-anonymous=1 socket=" + socket(), "-L",
            "module-null-sink sink_name=speaker rate=48000 channels=2" };
        if (m_microphones == Microphones::One) {
            arguments += { "-L", "module-null-sink sink_name=room rate=48000 channels=1", "-L",
                "module-remap-source source_name=mic master=room.monitor", "-L",
                "module-sine sink=room frequency=440" };
        }
        m_server.setStandardErrorFile(QProcess::nullDevice());
        m_server.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        m_server.start("pulseaudio", arguments);
        EXPECT_TRUE(await([] { return control({ "info" }); })) << "pulseaudio did not come up";
        control({ "set-default-sink", "speaker" });
        if (m_microphones == Microphones::One)
            EXPECT_TRUE(control({ "set-default-source", "mic" }));
        // Without a low-latency stream, the null sink sleeps for up to two seconds, so that both sound and silence
        // arrive late.
        m_haste.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        m_haste.start("pacat",
            { "--latency-msec=20", m_microphones == Microphones::One ? "--device=room" : "--device=speaker",
                "/dev/zero" });
    }

    ~SoundServer()
    {
        kill();
        for (const char* variable : { "PULSE_RUNTIME_PATH", "PULSE_STATE_PATH", "PULSE_COOKIE", "PULSE_SERVER" })
            qunsetenv(variable);
    }
    SoundServer(const SoundServer&) = delete;
    SoundServer& operator=(const SoundServer&) = delete;

    QString socket() const { return m_folder.filePath("native"); }

    void kill()
    {
        m_server.kill();
        m_server.waitForFinished();
        m_haste.kill();
        m_haste.waitForFinished();
    }

    /// Suspends the server process. After `thaw`, the delayed sound arrives all at once.
    void freeze() { ::kill(pid_t(m_server.processId()), SIGSTOP); }
    void thaw() { ::kill(pid_t(m_server.processId()), SIGCONT); }

    bool unplug() { return control({ "unload-module", "module-remap-source" }); }
    bool plugIn()
    {
        return control({ "load-module", "module-remap-source", "source_name=mic", "master=room.monitor" })
            && control({ "set-default-source", "mic" });
    }

    /// Runs `pactl` and returns whether it succeeded.
    static bool control(const QStringList& arguments)
    {
        QProcess pactl;
        pactl.setStandardErrorFile(QProcess::nullDevice());
        pactl.start("pactl", arguments);
        return pactl.waitForFinished() && pactl.exitCode() == 0;
    }

private:
    const Microphones m_microphones;
    QTemporaryDir m_folder;
    QProcess m_server;
    QProcess m_haste;
};

}
