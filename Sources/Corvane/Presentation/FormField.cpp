#include "Presentation/FormField.h"

namespace corvane {

void FormField::setReadOnly(bool readOnly)
{
    if (readOnly == m_readOnly)
        return;
    m_readOnly = readOnly;
    Q_EMIT readOnlyChanged();
}

void FormField::set(const QString& text, bool typed)
{
    m_typed = typed && !text.isEmpty();
    if (text == m_text)
        return;
    m_text = text;
    Q_EMIT textChanged();
}

}
