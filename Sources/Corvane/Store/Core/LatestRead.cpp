#include "Store/Core/LatestRead.h"

#include "Store/Core/LocalDB.h"

namespace corvane {

LatestRead::LatestRead(LocalDB& db)
    : m_db(db)
{
}

LatestRead::~LatestRead()
{
    stop();
}

void LatestRead::stop()
{
    if (m_stopped)
        m_stopped->store(true);
}

QString LatestRead::path() const
{
    return m_db.isOpen() ? m_db.path() : QString();
}

}
