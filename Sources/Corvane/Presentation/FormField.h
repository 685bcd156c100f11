#pragma once

#include <QObject>

namespace corvane {

/// What a field of a form asks for.
struct FieldSpec {
    QString id;
    QString label;
    QString placeholder = {};
    bool masked = false; ///< shows dots instead of the text
    bool folded = false; ///< in the part of the form that is folded initially
    bool narrow = false; ///< shares a row with other narrow fields
    int minimumLines = 1;
    int maximumLines = 1; ///< more than one: the text may have line breaks, and its box grows

    bool operator==(const FieldSpec&) const = default;
};

/// A field of a form: what it asks for, and its text.
class FormField : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString id READ id CONSTANT)
    Q_PROPERTY(QString label READ label CONSTANT)
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)
    Q_PROPERTY(bool masked READ masked CONSTANT)
    Q_PROPERTY(bool folded READ folded CONSTANT)
    Q_PROPERTY(bool narrow READ narrow CONSTANT)
    Q_PROPERTY(int minimumLines READ minimumLines CONSTANT)
    Q_PROPERTY(int maximumLines READ maximumLines CONSTANT)
    Q_PROPERTY(QString text READ text WRITE type NOTIFY textChanged)
    Q_PROPERTY(bool readOnly READ readOnly NOTIFY readOnlyChanged)
public:
    explicit FormField(const FieldSpec& spec, QObject* parent = nullptr)
        : QObject(parent)
        , m_spec(spec)
    {
    }

    const QString& id() const { return m_spec.id; }
    const QString& label() const { return m_spec.label; }
    const QString& placeholder() const { return m_spec.placeholder; }
    bool masked() const { return m_spec.masked; }
    bool folded() const { return m_spec.folded; }
    bool narrow() const { return m_spec.narrow; }
    int minimumLines() const { return m_spec.minimumLines; }
    int maximumLines() const { return m_spec.maximumLines; }
    const QString& text() const { return m_text; }
    QString trimmed() const { return m_text.trimmed(); }
    bool readOnly() const { return m_readOnly; }
    bool isTyped() const { return m_typed; } ///< the user typed the text

    void type(const QString& text) { set(text, true); }
    void fill(const QString& text) { set(text, false); }
    void setReadOnly(bool readOnly);

Q_SIGNALS:
    void textChanged();
    void readOnlyChanged();

private:
    void set(const QString& text, bool typed);

    const FieldSpec m_spec;
    QString m_text;
    bool m_typed = false;
    bool m_readOnly = false;
};

}
