#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/Linux/Decode/DecoderProcess.h"

#include <QHash>
#include <deque>

namespace corvane {

/// Passes open files, one at a time, to a sandboxed child (seccomp). The child is started on demand, ended when idle,
/// and replaced when a file crashed it. Destroying the decoder kills the child without waiting.
class SeccompMediaDecoder final : public MediaDecoder {
public:
    struct Limits {
        Milliseconds perFile { 2000 };
        Milliseconds start { 20'000 }; ///< for the child to start
        Milliseconds idle { 30'000 };
    };

    /// The child is `executable --decode`. `scheduler` outlives the decoder.
    SeccompMediaDecoder(Scheduler& scheduler, QString executable, Limits limits);
    ~SeccompMediaDecoder() override;

    Handle picture(const QString& path, PictureBox box, Answer<Pixels> answer) override;
    Handle shape(const QString& path, int bars, Answer<SoundShape> answer) override;
    Handle sound(const QString& path, SoundPosition position, Answer<SoundPiece> answer) override;

private:
    class Withdrawal;
    using Outcome = std::expected<DecodeReply, DecodeFailure>;

    struct Work {
        DecodeOrder order;
        QString path;
        std::function<void(const Outcome&)> done; ///< none once it was withdrawn
    };

    /// Identifies the state of a file when it was tried.
    struct FileMark {
        quint64 device = 0;
        quint64 node = 0;
        qint64 size = 0;
        qint64 changed = 0; ///< nanoseconds since the epoch
        bool operator==(const FileMark&) const = default;
    };
    friend size_t qHash(const FileMark& mark, size_t seed)
    {
        return qHashMulti(seed, mark.device, mark.node, mark.size, mark.changed);
    }
    struct OpenFile {
        Descriptor descriptor;
        FileMark mark;
    };

    static std::expected<OpenFile, DecodeFailure> open(const Work& work);
    template <typename Value, typename Convert>
    Handle ask(const DecodeOrder& order, const QString& path, Answer<Value> answer, Convert convert);
    void goOnSoon();
    void goOn();
    void startProcess();
    void give();
    void hearReply(const DecodeReply& reply);
    void loseProcess(DecodeFailure failure);
    void finish(const Outcome& outcome);

    Scheduler& m_scheduler;
    QString m_executable;
    Limits m_limits;
    std::deque<std::shared_ptr<Work>> m_waiting;
    std::shared_ptr<Work> m_current; ///< the child works on it, or will once it is ready
    OpenFile m_file; ///< of `m_current`
    std::unique_ptr<DecoderProcess> m_process;
    QHash<FileMark, DecodeFailure> m_deadly; ///< files that crashed a child, and how
    std::unique_ptr<Timer> m_turn;
    std::unique_ptr<Timer> m_timeout;
    std::unique_ptr<Timer> m_idle;
};

}
