#pragma once

#include "Foundation/Literals.h"
#include "SoundServer.h"
#include "Support/PrivateBus.h"

namespace corvane {

/// PipeWire instead of PulseAudio, with the same loudspeaker and a silent microphone.
class PipeWireServer {
public:
    PipeWireServer()
    {
        qputenv("PULSE_SERVER", QFile::encodeName("unix:" + m_folder.filePath("pulse/native")));
        start(m_pipewire, "pipewire");
        EXPECT_TRUE(await([this] { return QFile::exists(m_folder.filePath("pipewire-0")); })) << "it did not come up";
        // Only the session manager knows defaults. pipewire-pulse refuses them, and may hang, until it is there.
        start(m_manager, "wireplumber");
        EXPECT_TRUE(await([this] { return hasDefaults(); })) << "wireplumber did not come up";
        start(m_pulse, "pipewire-pulse");
        EXPECT_TRUE(await([] { return SoundServer::control({ "info" }); })) << "pipewire-pulse did not come up";
        for (const char* sink : { "speaker", "room" })
            EXPECT_TRUE(SoundServer::control({ "load-module", "module-null-sink", u"sink_name=%1"_s.arg(sink) }));
        EXPECT_TRUE(
            SoundServer::control({ "load-module", "module-remap-source", "source_name=mic", "master=room.monitor" }));
        EXPECT_TRUE(SoundServer::control({ "set-default-sink", "speaker" }));
        EXPECT_TRUE(SoundServer::control({ "set-default-source", "mic" }));
    }

    ~PipeWireServer()
    {
        for (QProcess* const program : { &m_pulse, &m_manager, &m_pipewire }) {
            program->kill();
            program->waitForFinished();
        }
        qunsetenv("PULSE_SERVER");
    }
    PipeWireServer(const PipeWireServer&) = delete;
    PipeWireServer& operator=(const PipeWireServer&) = delete;

private:
    QProcessEnvironment environment() const
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* variable : { "XDG_RUNTIME_DIR", "XDG_STATE_HOME", "HOME" })
            environment.insert(variable, m_folder.path());
        environment.insert("DBUS_SESSION_BUS_ADDRESS", m_bus.address());
        return environment;
    }

    bool hasDefaults() const
    {
        QProcess metadata;
        metadata.setProcessEnvironment(environment());
        metadata.start("pw-metadata", { "-n", "default" });
        return metadata.waitForFinished() && metadata.readAllStandardOutput().contains("Found");
    }

    void start(QProcess& process, const QString& program)
    {
        process.setProcessEnvironment(environment());
        process.setStandardOutputFile(QProcess::nullDevice());
        process.setStandardErrorFile(QProcess::nullDevice());
        process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        process.start(program, QStringList());
    }

    QTemporaryDir m_folder;
    PrivateBus m_bus; ///< without a bus, streams are never linked
    QProcess m_pipewire;
    QProcess m_manager;
    QProcess m_pulse;
};

}
