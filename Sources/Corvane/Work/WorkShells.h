#pragma once

#include "Foundation/Literals.h"
#include "Terminals/TerminalsView.h"

namespace corvane {

/// The strip of local shells below a workspace. They end with the program.
class WorkShells : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::TerminalsView* view READ view CONSTANT)
    Q_PROPERTY(bool open READ isOpen WRITE setOpen NOTIFY changed) ///< the terminal is shown, not only the tabs
    Q_PROPERTY(QString createLabel READ createLabel CONSTANT)
    Q_PROPERTY(QString foldLabel READ foldLabel NOTIFY changed)
public:
    WorkShells(const TerminalsView::Surroundings& at, const QString& module, QObject* parent);
    /// Opens its shells in that view, which outlives it.
    WorkShells(TerminalsView& view, const TerminalsView::Surroundings& at, const QString& module, QObject* parent);

    TerminalsView* view() { return &m_view; }
    bool isOpen() const;
    void setOpen(bool open);
    QString createLabel() const { return u"+ New Shell"_s; }
    QString foldLabel() const { return isOpen() ? u"Hide the terminal"_s : u"Show the terminal"_s; }

    /// Opens a shell that first prints the text; nothing in the text is executed. `directory` may not exist. An empty
    /// name leaves the title to the shell.
    void show(const QString& name, const QString& text, const QString& directory);

    Q_INVOKABLE void pick(const QString& id); ///< shows that terminal, or folds it if it is shown

Q_SIGNALS:
    void changed();
    void brought(); ///< the terminal should take the keyboard

private:
    WorkShells(TerminalsView* view, const TerminalsView::Surroundings& at, const QString& module, QObject* parent);

    const TerminalsView::Surroundings m_at;
    const QString m_module;
    const std::unique_ptr<TerminalsView> m_own; ///< null if the view belongs to someone else
    TerminalsView& m_view;
    bool m_open = false;
};

}
