#include "Desk/QuickCapture.h"

#include "Foundation/Literals.h"
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
        { .module = u"ops"_s,
            .context = std::nullopt,
            .kind = kind,
            .title = title,
            .priority = u"normal"_s,
            .owner = u"Oskel"_s,
            .source = u"quick-capture"_s,
            .summary = QLatin1StringView("") })
                           .has_value();
    db.watch().tell(StoreSubject::Work);
    return saved;
}

QuickCapture::QuickCapture(LocalDB& db, GlobalShortcuts* shortcuts, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_hotKey({ .id = u"capture"_s,
                   .label = u"Capture a task or a note"_s,
                   .keys = { u"Ctrl+Alt+N"_s, u"Ctrl+Alt+Shift+N"_s },
                   .command = u"corvane capture"_s },
          shortcuts, defaults, this)
{
    connect(&m_hotKey, &HotKey::pressed, this, &QuickCapture::toggle);
}

void QuickCapture::registerHotKey()
{
    if (std::exchange(m_isRegistered, true))
        return;
    m_hotKey.bind();
    log(u"[QuickCapture] "_s + m_hotKey.bindingText());
}

void QuickCapture::toggle()
{
    log(u"[QuickCapture] toggle (visible=%1)"_s.arg(int(m_isVisible)));
    if (m_isVisible)
        close();
    else
        show();
}

void QuickCapture::show()
{
    m_text.clear();
    m_kind = u"task"_s;
    Q_EMIT changed();
    m_isVisible = true;
    Q_EMIT visibleChanged();
}

QList<Choice> QuickCapture::kinds()
{
    return { { u"task"_s, u"Task"_s }, { u"note"_s, u"Note"_s } };
}

QString QuickCapture::hint() const
{
    return u"Saves as an Ops %1 — review anytime in the Work Console."_s.arg(m_kind);
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
