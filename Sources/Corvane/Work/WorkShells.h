#pragma once

#include "Foundation/Literals.h"
#include "Terminals/TerminalsView.h"

namespace corvane {

/// The strip of local shells below a workspace. They belong to it, and end with the program.
class WorkShells : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::TerminalsView* view READ view CONSTANT)
    Q_PROPERTY(bool open READ isOpen WRITE setOpen NOTIFY changed) ///< the one in front is shown, not its tab alone
    Q_PROPERTY(QString createLabel READ createLabel CONSTANT)
    Q_PROPERTY(QString foldLabel READ foldLabel NOTIFY changed)
public:
    WorkShells(const TerminalsView::Surroundings& at, const QString& module, QObject* parent);

    TerminalsView* view() { return &m_view; }
    bool isOpen() const;
    void setOpen(bool open);
    QString createLabel() const { return u"+ New Shell"_s; }
    QString foldLabel() const { return isOpen() ? u"Fold the terminal"_s : u"Show the terminal"_s; }

    /// A new shell in front, behind a text that is shown and of which nothing is run. It starts in the directory, where
    /// there is one. Without a name it is called as its shell says.
    void show(const QString& name, const QString& text, const QString& directory);

    Q_INVOKABLE void pick(const QString& id); ///< its tab was pressed: shows it, or folds it where it is shown

Q_SIGNALS:
    void changed();
    void brought(); ///< a person asked for the one in front

private:
    const TerminalsView::Surroundings m_at;
    const QString m_module;
    TerminalsView m_view;
    bool m_open = false;
};

}
