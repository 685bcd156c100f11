#pragma once

#include "Settings/ConnectFlow.h"

namespace corvane {

/// A field of a form: what it asks for, and what it holds.
class FormField : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString id READ id CONSTANT)
    Q_PROPERTY(QString label READ label CONSTANT)
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)
    Q_PROPERTY(bool masked READ masked CONSTANT)
    Q_PROPERTY(QString text READ text WRITE type NOTIFY textChanged)
    Q_PROPERTY(bool readOnly READ readOnly NOTIFY readOnlyChanged)
public:
    explicit FormField(const ConnectField& field, QObject* parent = nullptr)
        : QObject(parent)
        , m_field(field)
    {
    }

    const QString& id() const { return m_field.id; }
    const QString& label() const { return m_field.label; }
    const QString& placeholder() const { return m_field.placeholder; }
    bool masked() const { return m_field.masked; }
    const QString& text() const { return m_text; }
    QString trimmed() const { return m_text.trimmed(); }
    bool readOnly() const { return m_readOnly; }
    bool isTyped() const { return m_typed; } ///< what it holds came from the person

    void type(const QString& text) { set(text, true); }
    void fill(const QString& text) { set(text, false); }
    void setReadOnly(bool readOnly);

Q_SIGNALS:
    void textChanged();
    void readOnlyChanged();

private:
    void set(const QString& text, bool typed);

    const ConnectField m_field;
    QString m_text;
    bool m_typed = false;
    bool m_readOnly = false;
};

}
