#pragma once

#include "Foundation/Literals.h"
#include "Platform/HotKey.h"
#include "Presentation/Choice.h"

namespace corvane {

class LocalDB;

/// Adds a task or note to the module "ops". False if nothing is written: the text is blank, or the file cannot be
/// written.
bool saveCapture(LocalDB& db, const QString& kind, const QString& text);

/// A small panel, opened by a global shortcut, that adds a task or a note to the work records. Every action closes it.
class QuickCapture : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool visible READ isVisible NOTIFY visibleChanged)
    Q_PROPERTY(QString text MEMBER m_text NOTIFY changed)
    Q_PROPERTY(QString kind MEMBER m_kind NOTIFY changed) ///< "task" or "note"
    Q_PROPERTY(QList<corvane::Choice> kinds READ kinds CONSTANT)
    Q_PROPERTY(QString prompt READ prompt CONSTANT)
    Q_PROPERTY(QString hint READ hint NOTIFY changed)
public:
    /// All references outlive the object; shortcuts may be null.
    QuickCapture(LocalDB& db, GlobalShortcuts* shortcuts, UserDefaults& defaults, QObject* parent = nullptr);

    HotKey& hotKey() { return m_hotKey; }
    void registerHotKey(); ///< a second call has no effect
    void toggle();

    bool isVisible() const { return m_isVisible; }
    static QList<Choice> kinds();
    static QString prompt() { return u"What's on your mind?  ⏎ saves · esc closes"_s; }
    QString hint() const;

    Q_INVOKABLE void save(); ///< and closes
    Q_INVOKABLE void close();

Q_SIGNALS:
    void visibleChanged();
    void changed();

private:
    void show();

    LocalDB& m_db;
    HotKey m_hotKey;
    QString m_text;
    QString m_kind;
    bool m_isVisible = false;
    bool m_isRegistered = false;
};

}
