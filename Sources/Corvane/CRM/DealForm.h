#pragma once

#include "Presentation/Form.h"
#include "Store/People/CrmRecords.h"

#include <functional>

namespace corvane {

/// Adds a deal with the person beside the thread. What was typed is kept until another person is opened.
class DealForm final : public corvane::Form {
    Q_OBJECT
    Q_PROPERTY(QString stage READ stage WRITE setStage NOTIFY changed)
public:
    /// `add` saves the deal and returns the error, empty on success.
    explicit DealForm(std::function<QString(const NewDeal&)> add, QObject* parent = nullptr);

    void setPerson(const QString& contactId, const QString& name); ///< another one closes the form

    bool isOpen() const override { return m_isOpen; }
    QString title() const override;
    QString hint() const override; ///< "With Ana"
    QString buttonLabel() const override { return title(); }
    bool complete() const override; ///< has a person and a name
    QString message() const override { return m_error; }
    const QString& stage() const { return m_stage; }
    void setStage(const QString& stage);

    Q_INVOKABLE void open();
    void submit() override;
    void close() override;

private:
    void clear();

    const std::function<QString(const NewDeal&)> m_add;
    QString m_contactId;
    QString m_contactName;
    QString m_stage;
    QString m_error;
    bool m_isOpen = false;
};

}
