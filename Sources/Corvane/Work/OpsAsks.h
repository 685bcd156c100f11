#pragma once

#include "Foundation/Cancellation.h"
#include "Foundation/Literals.h"
#include "Presentation/RowListModel.h"
#include "Store/Work/OpsRecords.h"
#include "Work/WorkServices.h"

#include <QObject>
#include <qcoro/qcorotask.h>

namespace corvane {

class DateWords;

/// A question that was asked of the user, open or answered.
class OpsAskSeed {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString question MEMBER question)
    Q_PROPERTY(QString urgency MEMBER urgency)
    Q_PROPERTY(QString facts MEMBER facts)
    Q_PROPERTY(QString answer MEMBER answer)
    Q_PROPERTY(bool open MEMBER open)
    Q_PROPERTY(bool urgent MEMBER urgent)
    Q_PROPERTY(QString aloud MEMBER aloud)
public:
    QString id;
    QString question;
    QString urgency; ///< empty for the usual urgency
    QString facts;
    QString answer; ///< with its author
    bool open = true;
    bool urgent = false;
    QString aloud;

    static constexpr const char* role = "ask";
    const QString& key() const { return id; }
    bool operator==(const OpsAskSeed&) const = default;
};

OpsAskSeed askSeed(const OpsAskRow& ask, const DateWords& words);

/// The assistant's instructions for answering from a project, and its input.
QString opsAskInstructions();
QString opsAskPrompt(LocalDB& db, const OpsAskRow& ask);

/// The questions of all projects or of one, and the sheet for answering.
class OpsAsks : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::HoldingListModel* asks READ asks CONSTANT)
    Q_PROPERTY(bool includeAnswered READ includeAnswered WRITE setIncludeAnswered NOTIFY changed)
    Q_PROPERTY(QString answering READ answering NOTIFY changed) ///< the question in the sheet; empty while it is closed
    Q_PROPERTY(QString facts READ facts NOTIFY changed)
    Q_PROPERTY(QString answerText READ answerText WRITE setAnswerText NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText CONSTANT)
public:
    OpsAsks(const WorkServices& services, QObject* parent);
    ~OpsAsks() override; ///< cancels what is running

    void setProject(const OpsProjectId& project) { m_project = project; }
    void reload();

    HoldingListModel* asks() { return &m_asks; }
    const QList<OpsAskSeed>& rows() const { return m_asks.rows(); }
    bool includeAnswered() const { return m_includeAnswered; }
    void setIncludeAnswered(bool include);
    QString answering() const;
    QString facts() const;
    const QString& answerText() const { return m_answerText; }
    void setAnswerText(const QString& text);
    const QString& error() const { return m_error; }
    bool busy() const { return m_running.has_value(); }
    QString emptyTitle() const { return u"No open questions"_s; }
    QString emptyText() const;

    Q_INVOKABLE void beginAnswer(const QString& id);
    Q_INVOKABLE void saveAnswer();
    Q_INVOKABLE void answerWithLumo();
    Q_INVOKABLE void cancelLumo();
    Q_INVOKABLE void closeAnswer();

Q_SIGNALS:
    void changed();
    void wrote();

private:
    QCoro::Task<> run(OpsAskRow ask);
    void tell();

    const WorkServices m_at;
    OpsProjectId m_project;
    bool m_includeAnswered = false;
    std::optional<OpsAskRow> m_answering;
    QString m_answerText;
    QString m_error;
    std::optional<CancelHandle> m_running;
    RowListModel<OpsAskSeed> m_asks;
};

}
