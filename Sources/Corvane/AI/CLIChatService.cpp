#include "AI/CLIChatService.h"

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

/// The file that the tool writes its answer to; gone with this object.
class AnswerFile {
public:
    explicit AnswerFile(const QString& folder)
        : m_path(folder + QStringLiteral("/corvane-cli-draft-")
              + QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper() + QStringLiteral(".txt"))
    {
    }
    ~AnswerFile() { QFile::remove(m_path); }
    AnswerFile(const AnswerFile&) = delete;
    AnswerFile& operator=(const AnswerFile&) = delete;

    const QString& path() const { return m_path; }

    /// A pipe or a device in its place would keep its reader waiting.
    bool isFile() const { return QFileInfo(m_path).isFile(); }
    bool isTooLarge() const { return QFileInfo(m_path).size() > answerLimit; }

    /// As it stands; nothing where it does not read or is blank.
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
        ? QStringLiteral("Codex CLI draft failed: ") + detail
        : QStringLiteral("Codex CLI not found — install the codex CLI or choose %1.").arg(machineWords::localModel);
}

QStringList codexCandidates(const QString& home)
{
    return { home + QStringLiteral("/.npm-global/bin/codex"), QStringLiteral("/opt/homebrew/bin/codex"),
        QStringLiteral("/usr/local/bin/codex") };
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
    const QStringList arguments { QStringLiteral("exec"), QStringLiteral("-s"), QStringLiteral("read-only"),
        QStringLiteral("--skip-git-repo-check"), QStringLiteral("-C"), folder, QStringLiteral("--output-last-message"),
        answer.path(), QStringLiteral("-") };
    // Not as an argument: those are short, and other users of the machine can read them.
    const QByteArray input = (instructions + QStringLiteral("\n\n") + prompt).toUtf8();
    const Result<ToolEnd> end = co_await m_tools.run(*codex, arguments, input, cancel);
    if (!end)
        co_return std::unexpected(end.error());

    const QString status = QString::number(end->status);
    if (!end->isSuccess()) {
        log(QStringLiteral("[CLIChatService] codex exec exit %1: %2")
                .arg(status, decodedUtf8(end->errors).value_or(QString())));
    } else if (answer.isFile()) {
        if (answer.isTooLarge())
            co_return failure(describe(CLIChatError::Failed, QStringLiteral("the answer is larger than 4 MB")));
        if (const auto text = answer.text())
            co_return *text;
    }
    co_return failure(describe(CLIChatError::Failed, QStringLiteral("exit ") + status));
}

}
