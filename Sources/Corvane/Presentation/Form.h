#pragma once

#include "Presentation/FormField.h"

#include <QHash>
#include <QList>
#include <QScopedPointer>
#include <memory>
#include <vector>

namespace corvane {

/// A sheet in which a person fills in a list of fields and submits them. `FormSheet.qml` shows it. A class derived from
/// it spells out `corvane::Form`: only then does qmllint of Qt 6.4 find the properties of the base.
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
    virtual bool complete() const = 0; ///< it holds what submitting needs
    virtual bool busy() const { return false; }
    virtual QString message() const { return {}; } ///< what goes on, what to decide, or what failed
    virtual QString messageKind() const; ///< "plain", "warn" or "bad", which it is unless a form says otherwise

    int fieldCount() const { return int(m_fields.size()); }
    Q_INVOKABLE corvane::FormField* fieldAt(int index) const { return m_fields.at(size_t(index)).get(); }
    FormField& field(const QString& id) const; ///< there must be one
    QHash<QString, QString> values() const; ///< by the fields' ids

    Q_INVOKABLE virtual void submit() = 0; ///< nothing while it is not complete
    Q_INVOKABLE virtual void cancel() { close(); }
    Q_INVOKABLE virtual void close() = 0;

Q_SIGNALS:
    void changed();
    void fieldsChanged();

protected:
    /// Replaces the fields. `values` holds what they contain at first, by their ids.
    void setFields(const QList<FieldSpec>& specs, const QHash<QString, QString>& values = {});
    virtual void edited() { Q_EMIT changed(); } ///< the text of a field changed

private:
    /// Gone later: the window lets go of them first. They have a parent, so QML does not own what `fieldAt` returns.
    std::vector<std::unique_ptr<FormField, QScopedPointerDeleteLater>> m_fields;
};

}
