#pragma once

#include "Foundation/Cancellation.h"
#include "Presentation/EnumWord.h"
#include "Store/Messages/InboxQueries.h"

#include <QObject>
#include <functional>

namespace corvane {

class LumoAI;

/// A generated text about the open person: in progress, ready or unavailable. The base of the assistant's panels. One
/// request runs at a time; a newer one, or another person, cancels it.
class GenerationPanel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString state READ stateWord NOTIFY changed) ///< idle loading missingModel empty error ready
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString detail READ detail NOTIFY changed)
    Q_PROPERTY(QString backend READ backend NOTIFY changed) ///< who would answer now; empty if nobody would
    Q_PROPERTY(bool canTryAgain READ canTryAgain NOTIFY changed) ///< after a failure
public:
    enum class State { Idle, Loading, MissingModel, Empty, Error, Ready };
    Q_ENUM(State)

    /// `ai` outlives the panel.
    explicit GenerationPanel(LumoAI& ai, QObject* parent = nullptr);
    ~GenerationPanel() override; ///< cancels a running request

    void open(const ContactRow& contact); ///< with an empty id: nobody

    QString stateWord() const { return enumWord(m_state); }
    const QString& title() const { return m_title; }
    const QString& detail() const { return m_detail; }
    QString backend() const;
    bool canTryAgain() const;

    Q_INVOKABLE void dismiss(); ///< cancels a running request and hides the result
    Q_INVOKABLE void tryAgain();

Q_SIGNALS:
    void changed();

protected:
    /// A new request: its handle tells whether its answer is still wanted. `again` repeats it.
    CancelHandle begin(const QString& title, std::function<void()> again);
    void show(State state, const QString& title, const QString& detail = {});
    virtual void forget() { } ///< the result of the last request

    LumoAI& m_ai;
    ContactRow m_contact;

private:
    State m_state = State::Idle;
    QString m_title;
    QString m_detail;
    CancelHandle m_running;
    std::function<void()> m_again;
};

}
