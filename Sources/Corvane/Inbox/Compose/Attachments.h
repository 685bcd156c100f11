#pragma once

#include "Engines/Outbox.h"
#include "Foundation/BackgroundQueue.h"
#include "Presentation/RowListModel.h"
#include "Store/Messages/ChannelFeatures.h"

#include <QUrl>

namespace corvane {

class Desktop;

/// An attached file, as the screen shows it.
class AttachmentItem {
    Q_GADGET
    Q_PROPERTY(QString path MEMBER path)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString size MEMBER size)
    Q_PROPERTY(bool copying MEMBER copying)
public:
    QString path; ///< of the copy; a placeholder while it is being made
    QString name;
    QString size;
    bool copying = false;

    static constexpr const char* role = "file";
    const QString& key() const { return path; }
    bool operator==(const AttachmentItem&) const = default;
};

/// The files of the message being written. Picked files are copied in the background, so that exactly what was picked
/// is sent; the copies belong to the owner of the message.
class Attachments : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool allowed READ allowed NOTIFY changed) ///< the channel supports files
    Q_PROPERTY(corvane::HoldingListModel* rows READ rows CONSTANT) ///< of AttachmentItem
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
    Q_PROPERTY(QString problem READ problem NOTIFY changed)
public:
    Attachments(const Outbox& outbox, Desktop& desktop, QObject* parent = nullptr); ///< both outlive the object

    /// Shows the files of the message of `owner`.
    void show(const QString& owner, const QList<OutgoingFile>& files);
    void setChannel(const QString& label, const ChannelFeatures& features);

    bool allowed() const { return m_features.files; }
    HoldingListModel* rows() { return &m_rows; }
    const QList<OutgoingFile>& files() const { return m_files; }
    QString summary() const; ///< "3.1 MB of 18.0 MB"; empty without files
    QString problem() const; ///< why the channel cannot send these files; empty if it can
    bool isReady() const { return problem().isEmpty() && !copies(); }

    Q_INVOKABLE void choose(); ///< in the desktop's dialog
    Q_INVOKABLE void add(const QList<QUrl>& files);
    Q_INVOKABLE void paste(const QList<QUrl>& files, const QByteArray& picture); ///< the PNG only if no files
    Q_INVOKABLE void remove(const QString& path);

Q_SIGNALS:
    void changed();
    void refused(const QString& why);
    void added(const QString& owner, const OutgoingFile& file); ///< possibly to a message that is no longer shown
    void removed(const QString& path);

private:
    struct Job {
        int id = 0;
        QString owner;
        QString name;
        qint64 bytes = 0;
    };

    void addFile(const QString& path);
    void copy(const QString& name, qint64 bytes, std::function<Result<OutgoingFile>()> work);
    bool fits(const QString& name, qint64 bytes);
    bool copies() const; ///< a file of the shown message
    qint64 bytes() const;
    void present();

    const Outbox m_outbox;
    Desktop& m_desktop;
    bool m_choosing = false;
    ChannelFeatures m_features;
    QString m_channelLabel;
    QString m_owner;
    QList<OutgoingFile> m_files;
    QList<Job> m_jobs;
    int m_lastJob = 0;
    RowListModel<AttachmentItem> m_rows;
    BackgroundQueue m_background; ///< destroyed first: no callbacks afterwards
};

}
