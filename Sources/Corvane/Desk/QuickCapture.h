#pragma once

#include "Foundation/Literals.h"
#include "Platform/HotKey.h"
#include "Presentation/Choice.h"

namespace corvane {

class LocalDB;

/// One task or note for the module "ops". False where nothing is written, as the text is blank or the file refuses.
bool saveCapture(LocalDB& db, const QString& kind, const QString& text);

/// A small panel, one keystroke away in every program, that takes a task or a note into the work records. It never
/// stands in the way: every path ends with it closed.
class QuickCapture : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool visible READ isVisible NOTIFY visibleChanged)
    Q_PROPERTY(QString text MEMBER m_text NOTIFY changed)
    Q_PROPERTY(QString kind MEMBER m_kind NOTIFY changed) ///< "task" or "note"
    Q_PROPERTY(QList<corvane::Choice> kinds READ kinds CONSTANT)
    Q_PROPERTY(QString prompt READ prompt CONSTANT)
    Q_PROPERTY(QString hint READ hint NOTIFY changed)
public:
    /// All of them outlive the object; there may be no shortcuts.
    QuickCapture(LocalDB& db, GlobalShortcuts* shortcuts, UserDefaults& defaults, QObject* parent = nullptr);

    HotKey& hotKey() { return m_hotKey; }
    void registerHotKey(); ///< a second call leaves one registered
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
