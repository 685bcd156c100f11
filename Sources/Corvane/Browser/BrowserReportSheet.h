#pragma once

#include "Browser/BrowserBlackout.h"
#include "Browser/BrowserBugs.h"
#include "Foundation/BackgroundQueue.h"

#include <QObject>
#include <QStringList>

namespace corvane {

class ChromiumBrowserController;
class LocalDB;

/// What is about to be saved of a page, shown before anything is written: the picture, and for a bug its fields.
class BrowserReportSheet : public QObject {
    Q_OBJECT
    Q_PROPERTY(Purpose purpose READ purpose NOTIFY changed)
    Q_PROPERTY(bool isBug READ isBug NOTIFY changed)
    Q_PROPERTY(QString heading READ heading NOTIFY changed)
    Q_PROPERTY(QString detail READ detail NOTIFY changed)
    Q_PROPERTY(corvane::BrowserBlackout* picture READ picture CONSTANT)
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY changed)
    Q_PROPERTY(QString severity READ severity WRITE setSeverity NOTIFY changed)
    Q_PROPERTY(QStringList severities READ severities CONSTANT)
    Q_PROPERTY(QString owner READ owner WRITE setOwner NOTIFY changed)
    Q_PROPERTY(QString ownerHint READ ownerHint CONSTANT)
    Q_PROPERTY(QString note READ note WRITE setNote NOTIFY changed)
    Q_PROPERTY(QString preview READ preview NOTIFY changed) ///< counts, and the newest events
    Q_PROPERTY(QString stepsText READ stepsText NOTIFY changed) ///< one line per step
    Q_PROPERTY(QString submitLabel READ submitLabel NOTIFY changed)
    Q_PROPERTY(QString refusal READ refusal NOTIFY changed) ///< why it was not saved, or empty
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
public:
    enum class Purpose { Closed, Evidence, Bug };
    Q_ENUM(Purpose)

    /// Both outlive the sheet.
    BrowserReportSheet(LocalDB& db, ChromiumBrowserController& browser, QObject* parent);
    ~BrowserReportSheet() override;

    /// Opens it with what the page shows now.
    void open(Purpose purpose, const BrowserProject& project, const QString& sessionId, const QString& requestedURL);

    Purpose purpose() const { return m_purpose; }
    bool isBug() const { return m_purpose == Purpose::Bug; }
    QString heading() const;
    QString detail() const;
    BrowserBlackout* picture() { return &m_picture; }
    const QString& title() const { return m_title; }
    void setTitle(const QString& title);
    const QString& severity() const { return m_severity; }
    void setSeverity(const QString& severity);
    QStringList severities() const;
    const QString& owner() const { return m_owner; }
    void setOwner(const QString& owner);
    QString ownerHint() const;
    const QString& note() const { return m_note; }
    void setNote(const QString& note);
    QString preview() const;
    QString stepsText() const;
    QString submitLabel() const;
    const QString& refusal() const { return m_refusal; }
    bool busy() const { return m_busy; }

    Q_INVOKABLE void submit();
    Q_INVOKABLE void close();

Q_SIGNALS:
    void changed();
    /// The result, for the user; `itemId` is that of the bug, if one was filed.
    void submitted(const QString& notice, const QString& itemId);

private:
    void write(const BrowserEvidencePayload& payload);
    void keep(const BrowserEvidencePayload& payload, const Result<SavedEvidence>& evidence);
    void file(const BrowserEvidencePayload& payload, const Result<SavedEvidence>& evidence);
    void edit(QString& field, const QString& value);
    void refuse(const QString& reason);
    void setBusy(bool busy);

    LocalDB& m_db;
    ChromiumBrowserController& m_browser;
    Purpose m_purpose = Purpose::Closed;
    BrowserProject m_project;
    QString m_sessionId;
    QString m_requestedURL;
    BrowserBlackout m_picture;
    QString m_title;
    QString m_severity;
    QString m_owner;
    QString m_note;
    QString m_refusal;
    bool m_busy = false;
    BackgroundQueue m_queue; ///< destroyed first: its work uses the members above
};

}
