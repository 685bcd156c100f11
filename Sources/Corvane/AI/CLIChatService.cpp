#include "AI/CLIChatService.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Foundation/MachineWords.h"
#include "Platform/ToolRunner.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <QUuid>
#include <algorithm>

namespace corvane {

namespace {

constexpr qint64 answerLimit = 4 * 1024 * 1024;

std::optional<QString> decodedUtf8(const QByteArray& bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8);
    QString text = decoder(bytes);
    return decoder.hasError() ? std::nullopt : std::optional(std::move(text));
}

/// The file that the tool writes its answer to; deleted with this object.
class AnswerFile {
public:
    explicit AnswerFile(const QString& folder)
        : m_path(folder + u"/corvane-cli-draft-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper()
              + u".txt"_s)
    {
    }
    ~AnswerFile() { QFile::remove(m_path); }
    AnswerFile(const AnswerFile&) = delete;
    AnswerFile& operator=(const AnswerFile&) = delete;

    const QString& path() const { return m_path; }

    /// A pipe or a device in its place would block the reader.
    bool isFile() const { return QFileInfo(m_path).isFile(); }
    bool isTooLarge() const { return QFileInfo(m_path).size() > answerLimit; }

    /// Unchanged; nothing if it is unreadable or blank.
    std::optional<QString> text() const
    {
        QFile file(m_path);
        if (!file.open(QIODevice::ReadOnly))
            return std::nullopt;
        const auto text = decodedUtf8(file.read(answerLimit));
        return text && !text->trimmed().isEmpty() ? text : std::nullopt;
    }

private:
    const QString m_path;
};

}

QString describe(CLIChatError error, const QString& detail)
{
    return error == CLIChatError::Failed
        ? u"Codex CLI draft failed: "_s + detail
        : u"Codex CLI not found — install the codex CLI or choose %1."_s.arg(machineWords::localModel);
}

QStringList codexCandidates(const QString& home)
{
    return { home + u"/.npm-global/bin/codex"_s, u"/opt/homebrew/bin/codex"_s, u"/usr/local/bin/codex"_s };
}

CLIChatService::CLIChatService(ToolRunner& tools, const QStringList& candidates)
    : m_tools(tools)
    , m_candidates(candidates)
{
}

std::optional<QString> CLIChatService::codexPath() const
{
    const auto found = std::ranges::find_if(m_candidates, [](const QString& path) {
        const QFileInfo file(path);
        return file.isFile() && file.isExecutable();
    });
    return found == m_candidates.cend() ? std::nullopt : std::optional(*found);
}

QCoro::Task<Result<QString>> CLIChatService::respond(QString instructions, QString prompt, CancelHandle cancel) const
{
    const std::optional<QString> codex = codexPath();
    if (!codex)
        co_return failure(describe(CLIChatError::Unavailable));

    const QString folder = QDir::tempPath();
    const AnswerFile answer(folder);
    const QStringList arguments { u"exec"_s, u"-s"_s, u"read-only"_s, u"--skip-git-repo-check"_s, u"-C"_s, folder,
        u"--output-last-message"_s, answer.path(), u"-"_s };
    // Not as an argument: their length is limited, and other users can read them.
    const QByteArray input = (instructions + u"\n\n"_s + prompt).toUtf8();
    const Result<ToolEnd> end = co_await m_tools.run(*codex, arguments, input, cancel);
    if (!end)
        co_return std::unexpected(end.error());

    const QString status = QString::number(end->status);
    if (!end->isSuccess()) {
        log(u"[CLIChatService] codex exec exit %1: %2"_s.arg(status, decodedUtf8(end->errors).value_or(QString())));
    } else if (answer.isFile()) {
        if (answer.isTooLarge())
            co_return failure(describe(CLIChatError::Failed, u"the answer is larger than 4 MB"_s));
        if (const auto text = answer.text())
            co_return *text;
    }
    co_return failure(describe(CLIChatError::Failed, u"exit "_s + status));
}

}
