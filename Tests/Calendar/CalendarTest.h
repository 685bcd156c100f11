#pragma once

#include "Calendar/CalendarStore.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"
#include "Platform/Linux/Services.h"
#include "Support/Await.h"
#include "Support/FakeCalendarSource.h"
#include "Support/StoreTest.h"

#include <QDateTime>
#include <QDir>

namespace corvane {

inline qint64 at(const char* local)
{
    return QDateTime::fromString(QString::fromLatin1(local), u"yyyy-MM-dd HH:mm"_s).toMSecsSinceEpoch();
}

/// A calendar's folders and the database that mirrors them, on a virtual clock.
class CalendarTest : public StoreTest {
protected:
    CalendarTest()
    {
        open();
        m_clock.setNowMs(at("2026-10-08 09:00"));
    }

    void write(const QString& name, const QByteArray& properties)
    {
        QDir().mkpath(m_folder);
        QFile file(m_folder + name);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:" + name.toUtf8() + "\r\n" + properties
            + "END:VEVENT\r\nEND:VCALENDAR\r\n");
    }

    CalendarStore& start(CalendarSource& source)
    {
        m_store = std::make_unique<CalendarStore>(
            CalendarStore::Surroundings { *m_db, source, m_background, m_clock, m_defaults, m_centre, [] {
                                             return QStringList { u"me@x.example"_s };
                                         } });
        m_store->bootstrap();
        return *m_store;
    }

    /// Waits for background threads and file notifications while advancing the clock.
    bool awaitEvents(const QStringList& titles)
    {
        return await([&] {
            m_clock.advance(Milliseconds(250));
            QStringList found;
            for (const CalEvent& event : m_store->events())
                found.append(event.title);
            return found == titles && table(u"SELECT title FROM calendar_event ORDER BY start_ms;"_s) == titles;
        });
    }

    const QString m_folder = QFileInfo(m_home.paths().applicationSupport).path() + u"/calendars/work/"_s;
    std::unique_ptr<CalendarSource> m_source { makeCalendarSource(m_home.paths()) };
    FakeCalendarSource m_fake; ///< must outlive `m_background`
    BackgroundQueue m_background;
    std::unique_ptr<CalendarStore> m_store;
};

}
