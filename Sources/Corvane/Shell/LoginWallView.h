#pragma once

#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"

#include <QObject>
#include <QString>

namespace corvane {

class ContentView;
class SessionStore;

/// The login wall: e-mail and password, signing in with the browser, and continuing without an account.
class LoginWallView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY changed)
    Q_PROPERTY(QString password READ password WRITE setPassword NOTIFY changed)
    Q_PROPERTY(bool canSubmit READ canSubmit NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(QString lastError READ lastError NOTIFY changed)
    Q_PROPERTY(QString primaryLabel READ primaryLabel NOTIFY changed)
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString tagline READ tagline CONSTANT)
    Q_PROPERTY(QString footnote READ footnote CONSTANT)
    Q_PROPERTY(QString emailLabel READ emailLabel CONSTANT)
    Q_PROPERTY(QString passwordLabel READ passwordLabel CONSTANT)
    Q_PROPERTY(QString browserLabel READ browserLabel CONSTANT)
    Q_PROPERTY(QString continueLabel READ continueLabel CONSTANT)
public:
    LoginWallView(SessionStore& session, ContentView& content, QObject* parent = nullptr);

    const QString& email() const { return m_email; }
    const QString& password() const { return m_password; }
    void setEmail(const QString& email);
    void setPassword(const QString& password);
    bool canSubmit() const; ///< not busy, and both fields are filled
    bool busy() const;
    QString lastError() const; ///< empty for none
    QString primaryLabel() const;
    QString title() const { return u"Corvane"_s; }
    QString tagline() const
    {
        return u"Your business, running on %1 — synced with Nimb web."_s.arg(machineWords::thisMachine);
    }
    QString footnote() const
    {
        return u"Everything runs locally on %1. Signing in links it to your Nimb workspace."_s.arg(
            machineWords::thisMachine);
    }
    QString emailLabel() const { return u"Email"_s; }
    QString passwordLabel() const { return u"Password"_s; }
    QString browserLabel() const { return u"Sign in with browser instead"_s; }
    QString continueLabel() const { return u"Continue without signing in"_s; }

    Q_INVOKABLE void submit(); ///< for Return in a field, or the primary button
    Q_INVOKABLE void signInWithBrowser();
    Q_INVOKABLE void continueWithoutSigningIn();

Q_SIGNALS:
    void changed();

private:
    SessionStore& m_session;
    ContentView& m_content;
    QString m_email;
    QString m_password;
};

}
