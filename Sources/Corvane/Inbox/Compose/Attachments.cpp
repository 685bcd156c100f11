#include "Inbox/Compose/Attachments.h"

#include "Foundation/Literals.h"
#include "Platform/Desktop.h"
#include "Presentation/BodyText.h"
#include "Presentation/SizeWords.h"

#include <QFileInfo>
#include <algorithm>

namespace corvane {

Attachments::Attachments(const Outbox& outbox, Desktop& desktop, QObject* parent)
    : QObject(parent)
    , m_outbox(outbox)
    , m_desktop(desktop)
{
}

void Attachments::show(const QString& owner, const QList<OutgoingFile>& files)
{
    m_owner = owner;
    m_files = files;
    present();
}

void Attachments::setChannel(const QString& label, const ChannelFeatures& features)
{
    m_channelLabel = label;
    m_features = features;
    Q_EMIT changed();
}

QString Attachments::summary() const
{
    if (m_rows.rowCount() == 0)
        return {};
    const QString size = sizeWords(bytes());
    return m_features.maxBytes ? u"%1 of %2"_s.arg(size, sizeWords(*m_features.maxBytes)) : size;
}

QString Attachments::problem() const
{
    if (m_files.isEmpty())
        return {};
    if (!m_features.files)
        return u"%1 carries no files here. Remove them, or choose another channel."_s.arg(m_channelLabel);
    if (m_features.maxBytes && bytes() > *m_features.maxBytes)
        return u"%1 carries at most %2 of files in one message."_s.arg(m_channelLabel, sizeWords(*m_features.maxBytes));
    return {};
}

void Attachments::choose()
{
    if (std::exchange(m_choosing, true))
        return;
    m_desktop.chooseFiles(u"Attach files"_s, this, [this, owner = m_owner](const Result<QList<QUrl>>& files) {
        m_choosing = false;
        if (!files)
            Q_EMIT refused(files.error().message);
        else if (owner == m_owner)
            add(*files);
        else if (!files->isEmpty())
            Q_EMIT refused(u"The files were chosen for another conversation."_s);
    });
}

void Attachments::add(const QList<QUrl>& files)
{
    for (const QUrl& file : files)
        addFile(file.toLocalFile());
}

void Attachments::addFile(const QString& path)
{
    const QFileInfo file(path);
    const QString name = BodyText::printable(file.fileName());
    if (file.isDir()) {
        Q_EMIT refused(u"%1 is a folder, and only files can be attached."_s.arg(name));
    } else if (!file.isFile() || !file.isReadable()) {
        Q_EMIT refused(u"%1 can't be read."_s.arg(name));
    } else if (fits(name, file.size())) {
        const qint64 room = m_features.maxBytes ? std::max<qint64>(1, *m_features.maxBytes - bytes()) : 0;
        copy(name, file.size(), [outbox = m_outbox, path, room] { return outbox.pick(path, room); });
    }
}

void Attachments::paste(const QList<QUrl>& files, const QByteArray& picture)
{
    if (!files.isEmpty())
        return add(files);
    const QString name = u"Pasted picture.png"_s;
    if (fits(name, picture.size()))
        copy(name, picture.size(), [outbox = m_outbox, name, picture] { return outbox.pick(name, picture); });
}

bool Attachments::fits(const QString& name, qint64 size)
{
    if (!m_features.maxBytes || bytes() + size <= *m_features.maxBytes)
        return true;
    Q_EMIT refused(u"%1 (%2) doesn't fit: %3 carries at most %4 of files in one message."_s.arg(
        name, sizeWords(size), m_channelLabel, sizeWords(*m_features.maxBytes)));
    return false;
}

void Attachments::copy(const QString& name, qint64 bytes, std::function<Result<OutgoingFile>()> work)
{
    const Job job { ++m_lastJob, m_owner, name, bytes };
    m_jobs.append(job);
    present();
    m_background.run<Result<OutgoingFile>>(std::move(work), [this, job](const Result<OutgoingFile>& file) {
        m_jobs.erase(std::ranges::find(m_jobs, job.id, &Job::id));
        if (file && job.owner == m_owner)
            m_files.append(*file);
        present();
        if (file)
            Q_EMIT added(job.owner, *file);
        else
            Q_EMIT refused(file.error().message);
    });
}

void Attachments::remove(const QString& path)
{
    const auto found = std::ranges::find(m_files, path, &OutgoingFile::path);
    if (found == m_files.end())
        return;
    m_outbox.drop({ *found });
    m_files.erase(found);
    present();
    Q_EMIT removed(path);
}

bool Attachments::copies() const
{
    return std::ranges::any_of(m_jobs, [this](const Job& job) { return job.owner == m_owner; });
}

qint64 Attachments::bytes() const
{
    qint64 sum = totalBytes(m_files);
    for (const Job& job : m_jobs)
        sum += job.owner == m_owner ? job.bytes : 0;
    return sum;
}

void Attachments::present()
{
    QList<AttachmentItem> items;
    for (const OutgoingFile& file : m_files)
        items.append({ file.path, file.name, sizeWords(file.bytes), false });
    for (const Job& job : m_jobs) {
        if (job.owner == m_owner)
            items.append({ QString::number(job.id), job.name, u"Copying…"_s, true });
    }
    m_rows.assign(items);
    Q_EMIT changed();
}

}
