#pragma once

#include <QObject>

namespace corvane {

class ReplyRouting;
class UserDefaults;

/// The hint in the empty field, and the keys that send.
class ComposerHints : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString placeholder READ placeholder NOTIFY changed)
    Q_PROPERTY(bool returnSends READ returnSends NOTIFY changed) ///< Ctrl+Return always sends
    Q_PROPERTY(QString sendKeys READ sendKeys NOTIFY changed)
public:
    /// Both outlive the object.
    ComposerHints(const ReplyRouting& routing, const UserDefaults& defaults, QObject* parent = nullptr);

    QString placeholder() const;
    bool returnSends() const;
    QString sendKeys() const;

Q_SIGNALS:
    void changed();

private:
    const ReplyRouting& m_routing;
    const UserDefaults& m_defaults;
};

}
