#pragma once

#include "Settings/AccountSetup.h"
#include "Settings/FormField.h"

#include <QScopedPointer>
#include <QUuid>
#include <memory>
#include <vector>

namespace corvane {

/// The sheet that connects a channel by what it asks for in its fields, or changes that for an account.
class ConnectForm : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString hint READ hint NOTIFY changed)
    Q_PROPERTY(QString buttonLabel READ buttonLabel NOTIFY changed)
    Q_PROPERTY(int fieldCount READ fieldCount NOTIFY changed)
    Q_PROPERTY(bool complete READ complete NOTIFY completeChanged)
public:
    explicit ConnectForm(const AccountSetup& setup, QObject* parent = nullptr);

    bool isOpen() const { return m_flow.has_value(); }
    QString title() const;
    QString hint() const { return m_flow ? m_flow->hint : QString(); } ///< Markdown
    QString buttonLabel() const;
    int fieldCount() const { return int(m_fields.size()); }
    Q_INVOKABLE corvane::FormField* field(int index) const { return m_fields.at(size_t(index)).get(); }
    bool complete() const; ///< what the channel needs is there

    void open(const ConnectFlow& flow);
    void edit(const Account& account);
    Q_INVOKABLE void submit(); ///< nothing while it is not complete
    Q_INVOKABLE void close(); ///< what was typed is forgotten

Q_SIGNALS:
    void changed();
    void completeChanged();
    void added(const QUuid& accountId);

private:
    std::optional<ConnectRequest> request() const;
    void show(const ConnectFlow& flow, const ConnectValues& values);

    const AccountSetup m_setup;
    std::optional<ConnectFlow> m_flow; ///< none while it is closed
    QUuid m_accountId; ///< of the account that is changed; null for a new one
    std::vector<std::unique_ptr<FormField, QScopedPointerDeleteLater>> m_fields; ///< the sheet lets go of them first
};

}
