#include "Terminal/Grid/Anchors.h"

namespace corvane::terminal {

using enum Place::Where;

Anchors::Id Anchors::take(Place place)
{
    if (m_free.empty()) {
        m_places.push_back(place);
        return Id(m_places.size() - 1);
    }
    const Id id = m_free.back();
    m_free.pop_back();
    m_places[id] = place;
    return id;
}

Anchors::Id Anchors::add(Row& row, int column)
{
    const Id id = take({ OnScreen, row.id, uint32_t(column) });
    m_onScreen.push_back(id);
    row.anchored = true;
    return id;
}

Anchors::Id Anchors::addInHistory(uint64_t line, uint32_t offset)
{
    return take({ InHistory, line, offset });
}

void Anchors::leaveScreen(Id id)
{
    if (m_places[id].where == OnScreen)
        std::erase(m_onScreen, id);
}

void Anchors::remove(Id id)
{
    leaveScreen(id);
    m_places[id] = {};
    m_free.push_back(id);
}

void Anchors::rowLeft(uint64_t rowId, uint64_t line, uint32_t offset)
{
    std::erase_if(m_onScreen, [&](Id id) {
        Place& place = m_places[id];
        if (place.line != rowId)
            return false;
        place = { InHistory, line, offset + place.offset };
        return true;
    });
}

void Anchors::rowGone(uint64_t rowId)
{
    std::erase_if(m_onScreen, [&](Id id) {
        if (m_places[id].line != rowId)
            return false;
        m_places[id].where = Gone;
        return true;
    });
}

void Anchors::screenGone()
{
    for (const Id id : m_onScreen)
        m_places[id].where = Gone;
    m_onScreen.clear();
}

void Anchors::move(Id id, Row& row, int column)
{
    if (m_places[id].where != OnScreen)
        m_onScreen.push_back(id);
    m_places[id] = { OnScreen, row.id, uint32_t(column) };
    row.anchored = true;
}

void Anchors::moveToHistory(Id id, uint64_t line, uint32_t offset)
{
    leaveScreen(id);
    m_places[id] = { InHistory, line, offset };
}

std::vector<Anchors::Id> Anchors::inHistoryFrom(uint64_t line) const
{
    std::vector<Id> found;
    for (Id id = 0; id < m_places.size(); ++id) {
        if (m_places[id].where == InHistory && m_places[id].line >= line)
            found.push_back(id);
    }
    return found;
}

}
