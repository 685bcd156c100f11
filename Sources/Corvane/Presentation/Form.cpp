#include "Presentation/Form.h"

#include "Foundation/Literals.h"

#include <algorithm>

namespace corvane {

Form::Form(QObject* parent)
    : QObject(parent)
{
}

Form::~Form() = default;

QString Form::messageKind() const
{
    return u"bad"_s;
}

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

void Form::setFields(const QList<FieldSpec>& specs, const QHash<QString, QString>& values)
{
    m_fields.clear();
    Q_EMIT fieldsChanged(); // the window must release the old ones, even if their number stays the same
    for (const FieldSpec& spec : specs) {
        FormField* const field = m_fields.emplace_back(new FormField(spec, this)).get();
        field->fill(values.value(spec.id));
        connect(field, &FormField::textChanged, this, [this] { edited(); });
    }
    Q_EMIT fieldsChanged();
}

}
