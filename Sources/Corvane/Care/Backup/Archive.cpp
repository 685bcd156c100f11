#include "Care/Backup/Archive.h"

#include "Foundation/Literals.h"
#include "Platform/PrivateFile.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFileInfo>
#include <QIODevice>
#include <algorithm>
#include <archive.h>
#include <archive_entry.h>

namespace corvane {

namespace {

constexpr qsizetype pieceBytes = 256 * 1024;
constexpr qsizetype longestName = 4096;

const QString stopped = u"Stopped."_s;

QString wordsOf(archive* from)
{
    const char* const words = archive_error_string(from);
    return words ? QString::fromUtf8(words) : u"It is not a backup, or it is damaged."_s;
}

la_ssize_t writePiece(archive* self, void* device, const void* data, size_t size)
{
    auto* const to = static_cast<QIODevice*>(device);
    if (to->write(static_cast<const char*>(data), qint64(size)) == qint64(size))
        return la_ssize_t(size);
    archive_set_error(self, -1, "%s", to->errorString().toUtf8().constData());
    return -1;
}

struct Source {
    QIODevice& device;
    QByteArray piece;
};

la_ssize_t readPiece(archive* self, void* source, const void** data)
{
    auto* const from = static_cast<Source*>(source);
    const qint64 count = from->device.read(from->piece.data(), from->piece.size());
    if (count < 0)
        archive_set_error(self, -1, "%s", from->device.errorString().toUtf8().constData());
    *data = from->piece.constData();
    return la_ssize_t(count);
}

struct Free {
    void operator()(archive* each) const { archive_free(each); }
    void operator()(archive_entry* each) const { archive_entry_free(each); }
};

std::unique_ptr<archive_entry, Free> plainEntry(const QString& name, qint64 bytes, qint64 modifiedSeconds)
{
    std::unique_ptr<archive_entry, Free> entry(archive_entry_new());
    archive_entry_set_pathname_utf8(entry.get(), name.toUtf8().constData());
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0600);
    archive_entry_set_size(entry.get(), bytes);
    archive_entry_set_mtime(entry.get(), modifiedSeconds, 0);
    return entry;
}

}

struct ArchiveWriter::Archive {
    std::unique_ptr<archive, Free> to { archive_write_new() };

    Result<void> check(la_ssize_t code) const
    {
        return code < ARCHIVE_WARN ? failure(wordsOf(to.get())) : Result<void>();
    }
    Result<void> write(const QByteArray& piece) const
    {
        return check(archive_write_data(to.get(), piece.constData(), size_t(piece.size())));
    }
};

ArchiveWriter::ArchiveWriter(QIODevice& to)
    : m_archive(std::make_unique<Archive>())
{
    archive* const made = m_archive->to.get();
    archive_write_set_format_pax_restricted(made);
    archive_write_set_options(made, "hdrcharset=UTF-8");
    archive_write_set_bytes_in_last_block(made, 1);
    archive_write_open(made, &to, nullptr, writePiece, nullptr);
}

ArchiveWriter::~ArchiveWriter() = default;

Result<StoredFile> ArchiveWriter::add(const QString& name, const QByteArray& content)
{
    const auto entry = plainEntry(name, content.size(), 0);
    if (const auto begun = m_archive->check(archive_write_header(m_archive->to.get(), entry.get())); !begun)
        return std::unexpected(begun.error());
    if (const auto written = m_archive->write(content); !written)
        return std::unexpected(written.error());
    return StoredFile { content.size(), QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex() };
}

Result<std::optional<StoredFile>> ArchiveWriter::addFile(
    const QString& name, const QString& path, const PieceSeen& seen)
{
    const auto file = openPlainFile(path);
    if (!file)
        return std::nullopt;
    const qint64 size = file->size();
    const auto entry = plainEntry(name, size, QFileInfo(path).lastModified().toSecsSinceEpoch());
    if (const auto begun = m_archive->check(archive_write_header(m_archive->to.get(), entry.get())); !begun)
        return std::unexpected(begun.error());
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (qint64 left = size; left > 0;) {
        QByteArray piece = file->read(std::min<qint64>(left, pieceBytes));
        // The entry keeps its declared size, even if the file has become shorter.
        if (piece.isEmpty())
            piece = QByteArray(std::min<qint64>(left, pieceBytes), '\0');
        hash.addData(piece);
        if (const auto written = m_archive->write(piece); !written)
            return std::unexpected(written.error());
        left -= piece.size();
        if (!seen(piece.size()))
            return failure(stopped);
    }
    return StoredFile { size, hash.result().toHex() };
}

Result<void> ArchiveWriter::finish()
{
    return m_archive->check(archive_write_close(m_archive->to.get()));
}

struct ArchiveReader::Archive {
    explicit Archive(QIODevice& device)
        : source { device, QByteArray(pieceBytes, '\0') }
    {
        archive_read_support_format_tar(from.get());
        // An empty file opens as a damaged archive; `next` reports the error.
        archive_read_open(from.get(), &source, nullptr, readPiece, nullptr);
    }

    /// Reads the entry's content in pieces, until its end or the first failure of `take`. A piece is valid until `take`
    /// returns.
    Result<void> readEntry(const std::function<Result<void>(const QByteArray& piece)>& take)
    {
        QByteArray buffer(pieceBytes, '\0');
        for (;;) {
            const la_ssize_t count = archive_read_data(from.get(), buffer.data(), size_t(buffer.size()));
            if (count < 0)
                return failure(wordsOf(from.get()));
            if (count == 0)
                return {};
            if (const Result<void> taken = take(QByteArray::fromRawData(buffer.constData(), count)); !taken)
                return taken;
        }
    }

    Source source;
    std::unique_ptr<archive, Free> from { archive_read_new() };
};

ArchiveReader::ArchiveReader(QIODevice& from)
    : m_archive(std::make_unique<Archive>(from))
{
}

ArchiveReader::~ArchiveReader() = default;

Result<std::optional<QString>> ArchiveReader::next()
{
    archive_entry* entry = nullptr;
    const int code = archive_read_next_header(m_archive->from.get(), &entry);
    if (code == ARCHIVE_EOF)
        return std::nullopt;
    if (code < ARCHIVE_WARN)
        return failure(wordsOf(m_archive->from.get()));
    const char* const text = archive_entry_pathname_utf8(entry);
    const QString name = QString::fromUtf8(text ? text : "");
    if (archive_entry_filetype(entry) != AE_IFREG || archive_entry_hardlink(entry) || archive_entry_symlink(entry))
        return failure(u"It contains something other than a regular file: %1."_s.arg(name));
    if (!isSafeName(name))
        return failure(u"It contains a path that leads out of its folder: %1."_s.arg(name));
    return name;
}

Result<StoredFile> ArchiveReader::extract(const QString& path, const PieceSeen& seen)
{
    auto file = makePrivateFile(path);
    if (!file)
        return std::unexpected(file.error());
    StoredFile stored;
    QCryptographicHash hash(QCryptographicHash::Sha256);
    const Result<void> read = m_archive->readEntry([&](const QByteArray& piece) -> Result<void> {
        hash.addData(piece);
        stored.bytes += piece.size();
        if ((*file)->write(piece) != piece.size())
            return failure((*file)->errorString());
        return seen(piece.size()) ? Result<void>() : failure(stopped);
    });
    if (!read)
        return std::unexpected(read.error());
    stored.sha256 = hash.result().toHex();
    return stored;
}

Result<QByteArray> ArchiveReader::content(qint64 limit)
{
    QByteArray content;
    const Result<void> read = m_archive->readEntry([&](const QByteArray& piece) -> Result<void> {
        content.append(piece);
        return content.size() <= limit ? Result<void>() : failure(u"It is too large."_s);
    });
    if (!read)
        return std::unexpected(read.error());
    return content;
}

bool isSafeName(const QString& name)
{
    if (name.isEmpty() || name.size() > longestName || name.contains(QChar(0)))
        return false;
    return std::ranges::none_of(
        name.split(u'/'), [](const QString& part) { return part.isEmpty() || part == "."_L1 || part == ".."_L1; });
}

}
