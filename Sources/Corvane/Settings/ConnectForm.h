#pragma once

#include "Presentation/Form.h"
#include "Settings/AccountSetup.h"

#include <QUuid>

namespace corvane {

/// Connects a channel with the values of its fields, or changes those of an account.
class ConnectForm final : public corvane::Form {
    Q_OBJECT
public:
    explicit ConnectForm(const AccountSetup& setup, QObject* parent = nullptr);

    bool isOpen() const override { return m_flow.has_value(); }
    QString title() const override;
    QString hint() const override { return m_flow ? m_flow->hint : QString(); }
    QString buttonLabel() const override;
    bool complete() const override;

    void open(const ConnectFlow& flow);
    void edit(const Account& account);
    void submit() override;
    void close() override; ///< discards what was typed

Q_SIGNALS:
    void added(const QUuid& accountId);

private:
    std::optional<ConnectRequest> request() const;
    void show(const ConnectFlow& flow, const ConnectValues& values);

    const AccountSetup m_setup;
    std::optional<ConnectFlow> m_flow; ///< none while it is closed
    QUuid m_accountId; ///< of the account that is changed; null for a new one
};

}
