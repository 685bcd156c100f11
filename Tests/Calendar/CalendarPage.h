#pragma once

#include "Calendar/CalendarServices.h"
#include "Calendar/CalendarTest.h"
#include "Calendar/CalendarView.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeLanguageModel.h"

namespace corvane {

/// The page of the calendar on a source: the real folders, or the test's.
class CalendarPageOn : public CalendarTest {
protected:
    explicit CalendarPageOn(bool isReal)
        : m_real(isReal)
    {
    }

    CalendarStore::Surroundings surroundings()
    {
        return { *m_db, m_real ? *m_source : m_fake, m_background, m_clock, m_defaults, m_centre, {} };
    }
    bool awaitShown(const char* titles)
    {
        return await([&] {
            m_clock.advance(Milliseconds(250));
            QStringList shown;
            for (const EventBlock& block : view.tiles()->layout().blocks)
                shown.append(block.title);
            return shown.join(u',') == QString::fromLatin1(titles);
        });
    }
    /// The notice of the page once there is one.
    QString told()
    {
        EXPECT_TRUE(await([&] { return !view.notice().isEmpty(); }));
        const QString words = view.notice();
        view.dismiss();
        return words;
    }

private:
    const bool m_real;

protected:
    FakeDesktop desktop;
    FakeLumo lumo { m_clock };
    CalendarServices services { surroundings(), lumo };
    CalendarView view { { services.store, services.commands, services.prep, desktop, m_centre } };
};

}
