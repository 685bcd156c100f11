#pragma once

#include "Foundation/Literals.h"

#include <QObject>
#include <QString>
#include <QUuid>

namespace corvane {

class AccountStore;
class EngineManager;

/// Links an account by its QR code. Closing does not affect the engine.
class PairingSheet : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed)
    Q_PROPERTY(QString qr READ qr NOTIFY changed)
    Q_PROPERTY(bool connected READ connected NOTIFY changed)
    Q_PROPERTY(bool failed READ failed NOTIFY changed) ///< waiting will not help
    Q_PROPERTY(QString doneLabel READ doneLabel CONSTANT)
public:
    PairingSheet(AccountStore& accounts, EngineManager& engine, QObject* parent = nullptr);

    bool isOpen() const { return !m_accountId.isNull(); }
    QString title() const;
    QString stateText() const;
    QString qr() const; ///< the content of the code; empty if there is none
    bool connected() const;
    bool failed() const;
    QString doneLabel() const { return u"Done"_s; }

    void open(const QUuid& accountId);
    Q_INVOKABLE void close();

Q_SIGNALS:
    void changed();

private:
    AccountStore& m_accounts;
    EngineManager& m_engine;
    QUuid m_accountId;
};

}
