#include "Presentation/Form.h"

#include <algorithm>

namespace corvane {

Form::Form(QObject* parent)
    : QObject(parent)
{
}

Form::~Form() = default;

FormField& Form::field(const QString& id) const
{
    const auto found = std::ranges::find(m_fields, id, [](const auto& field) { return field->id(); });
    Q_ASSERT(found != m_fields.end());
    return **found;
}

QHash<QString, QString> Form::values() const
{
    QHash<QString, QString> values;
    for (const auto& field : m_fields)
        values.insert(field->id(), field->text());
    return values;
}

void Form::setFields(const QList<FieldSpec>& specs)
{
    m_fields.clear();
    for (const FieldSpec& spec : specs) {
        FormField* const field = m_fields.emplace_back(new FormField(spec, this)).get();
        connect(field, &FormField::textChanged, this, [this] { edited(); });
    }
    Q_EMIT fieldsChanged();
}

}
