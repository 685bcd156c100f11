#include "Desk/QuickCapture.h"

#include "Foundation/Log.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Work/WorkWrites.h"

namespace corvane {

bool saveCapture(LocalDB& db, const QString& kind, const QString& text)
{
    const QString title = text.trimmed();
    if (title.isEmpty())
        return false;
    const bool saved = insertWorkItem(db,
        { .module = QStringLiteral("ops"),
            .context = std::nullopt,
            .kind = kind,
            .title = title,
            .priority = QStringLiteral("normal"),
            .owner = QStringLiteral("Oskel"),
            .source = QStringLiteral("quick-capture"),
            .summary = QLatin1String("") })
                           .has_value();
    db.watch().tell(StoreSubject::Work);
    return saved;
}

QuickCapture::QuickCapture(LocalDB& db, GlobalShortcuts* shortcuts, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_hotKey({ .id = QStringLiteral("capture"),
                   .label = QStringLiteral("Capture a task or a note"),
                   .keys = { QStringLiteral("Ctrl+Alt+N"), QStringLiteral("Ctrl+Alt+Shift+N") },
                   .command = QStringLiteral("corvane capture") },
          shortcuts, defaults, this)
{
    connect(&m_hotKey, &HotKey::pressed, this, &QuickCapture::toggle);
}

void QuickCapture::registerHotKey()
{
    if (std::exchange(m_isRegistered, true))
        return;
    m_hotKey.bind();
    log(QStringLiteral("[QuickCapture] register=%1 (%2)").arg(int(m_hotKey.isBound())).arg(m_hotKey.keys()));
}

void QuickCapture::toggle()
{
    log(QStringLiteral("[QuickCapture] toggle (visible=%1)").arg(int(m_isVisible)));
    if (m_isVisible)
        close();
    else
        show();
}

void QuickCapture::show()
{
    m_text.clear();
    m_kind = QStringLiteral("task");
    Q_EMIT changed();
    m_isVisible = true;
    Q_EMIT visibleChanged();
}

QList<Choice> QuickCapture::kinds()
{
    return { { QStringLiteral("task"), QStringLiteral("Task") }, { QStringLiteral("note"), QStringLiteral("Note") } };
}

QString QuickCapture::hint() const
{
    return QStringLiteral("Saves as an Ops %1 — review anytime in the Work Console.").arg(m_kind);
}

void QuickCapture::save()
{
    saveCapture(m_db, m_kind, m_text);
    close();
}

void QuickCapture::close()
{
    if (!std::exchange(m_isVisible, false))
        return;
    Q_EMIT visibleChanged();
}

}
