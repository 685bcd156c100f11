#include "Calendar/CalendarConnection.h"

#include "Calendar/CalendarEdits.h"
#include "Calendar/CalendarStore.h"
#include "Foundation/Literals.h"
#include "Platform/Desktop.h"

#include <QUrl>

namespace corvane {

CalendarConnection::CalendarConnection(CalendarStore& store, Desktop& desktop, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_desktop(desktop)
{
    connect(&m_store, &CalendarStore::changed, this, &CalendarConnection::changed);
}

QString CalendarConnection::state() const
{
    switch (m_store.access()) {
    case CalendarStore::Access::Unknown:
        return u"unknown"_s;
    case CalendarStore::Access::Denied:
        return m_store.events().isEmpty() ? u"denied"_s : u"ready"_s;
    case CalendarStore::Access::Granted:
        return u"ready"_s;
    }
    return {};
}

QString CalendarConnection::title() const
{
    return m_store.access() == CalendarStore::Access::Unknown ? u"Calendar not connected"_s
                                                              : u"Calendar access denied"_s;
}

QString CalendarConnection::text() const
{
    return m_store.access() == CalendarStore::Access::Unknown
        ? u"Connect the calendars on this computer to see your meetings here, and prepare for them."_s
        : m_store.lastError().value_or(QString());
}

bool CalendarConnection::hasEvolution() const
{
    return !m_store.places().service && m_store.surroundings().source.hasService();
}

void CalendarConnection::connectCalendar()
{
    m_store.requestAccess();
}

void CalendarConnection::makeLocal()
{
    makeCalendar(m_store, u"Personal"_s);
}

void CalendarConnection::chooseFolder()
{
    m_desktop.chooseFolder(u"Folder of calendars"_s, this, [this](const Result<QList<QUrl>>& chosen) {
        if (!chosen)
            Q_EMIT folderAsked();
        else if (!chosen->isEmpty()) {
            const auto used = useFolder(m_store, chosen->first().toLocalFile());
            Q_EMIT said(used ? QString() : used.error().message);
        }
    });
}

void CalendarConnection::useEvolution()
{
    useService(m_store, true);
}

}
