#pragma once

#include "Presentation/FormField.h"

#include <QHash>
#include <QList>
#include <QScopedPointer>
#include <memory>
#include <vector>

namespace corvane {

/// A sheet with a list of fields that the user fills in and submits. `FormSheet.qml` shows it. Derived classes must
/// name `corvane::Form` in full: only then does qmllint of Qt 6.4 find the properties of the base.
class Form : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString hint READ hint NOTIFY changed)
    Q_PROPERTY(QString buttonLabel READ buttonLabel NOTIFY changed)
    Q_PROPERTY(bool complete READ complete NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(QString message READ message NOTIFY changed)
    Q_PROPERTY(QString messageKind READ messageKind NOTIFY changed)
    Q_PROPERTY(int fieldCount READ fieldCount NOTIFY fieldsChanged)
public:
    explicit Form(QObject* parent = nullptr);
    ~Form() override;

    virtual bool isOpen() const = 0;
    virtual QString title() const = 0;
    virtual QString hint() const { return {}; } ///< Markdown
    virtual QString buttonLabel() const = 0;
    virtual bool complete() const = 0; ///< everything needed for submitting is there
    virtual bool busy() const { return false; }
    virtual QString message() const { return {}; } ///< progress, a question, or an error
    virtual QString messageKind() const; ///< "plain", "warn" or "bad"; by default "bad"

    int fieldCount() const { return int(m_fields.size()); }
    Q_INVOKABLE corvane::FormField* fieldAt(int index) const { return m_fields.at(size_t(index)).get(); }
    FormField& field(const QString& id) const; ///< it must exist
    QHash<QString, QString> values() const; ///< by field id

    Q_INVOKABLE virtual void submit() = 0; ///< no effect while it is incomplete
    Q_INVOKABLE virtual void cancel() { close(); }
    Q_INVOKABLE virtual void close() = 0;

Q_SIGNALS:
    void changed();
    void fieldsChanged();

protected:
    /// Replaces the fields. `values` are their initial texts, by field id.
    void setFields(const QList<FieldSpec>& specs, const QHash<QString, QString>& values = {});
    virtual void edited() { Q_EMIT changed(); } ///< the text of a field changed

private:
    /// Deleted later, after the window has released them. They have a parent, so that QML does not own what `fieldAt`
    /// returns.
    std::vector<std::unique_ptr<FormField, QScopedPointerDeleteLater>> m_fields;
};

}
