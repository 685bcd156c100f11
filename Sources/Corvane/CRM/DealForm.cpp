#include "CRM/DealForm.h"

#include "Foundation/Literals.h"

namespace corvane {

namespace {

const QString nameField = u"name"_s;
const QString valueField = u"value"_s;

}

DealForm::DealForm(std::function<QString(const NewDeal&)> add, QObject* parent)
    : Form(parent)
    , m_add(std::move(add))
{
    setFields({ { nameField, u"Deal name"_s, {} }, { valueField, u"Value"_s, u"Such as $12.5k"_s } });
    clear();
}

QString DealForm::title() const
{
    return u"Add Deal"_s;
}

QString DealForm::hint() const
{
    return u"With %1"_s.arg(m_contactName);
}

bool DealForm::complete() const
{
    return !m_contactId.isEmpty() && !field(nameField).trimmed().isEmpty();
}

void DealForm::setPerson(const QString& contactId, const QString& name)
{
    if (contactId != m_contactId) {
        m_isOpen = false;
        clear();
    }
    m_contactId = contactId;
    m_contactName = name;
    Q_EMIT changed();
}

void DealForm::setStage(const QString& stage)
{
    m_stage = stage;
    Q_EMIT changed();
}

void DealForm::open()
{
    m_isOpen = true;
    m_error.clear();
    Q_EMIT changed();
}

void DealForm::submit()
{
    if (!complete())
        return;
    m_error = m_add({ field(nameField).trimmed(), m_stage, field(valueField).trimmed(), {}, {} });
    if (m_error.isEmpty()) {
        m_isOpen = false;
        clear();
    }
    Q_EMIT changed();
}

void DealForm::close()
{
    if (!m_isOpen)
        return;
    m_isOpen = false;
    Q_EMIT changed();
}

void DealForm::clear()
{
    for (const QString& id : { nameField, valueField })
        field(id).fill({});
    m_stage = pipelineStages().first();
    m_error.clear();
}

}
