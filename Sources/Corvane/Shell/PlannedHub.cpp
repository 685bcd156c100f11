#include "Shell/PlannedHub.h"

#include "Shell/Hubs.h"

#include <QHash>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

struct Plan {
    QString purpose;
    QStringList parts;
};

Plan planOf(const QString& hub)
{
    static const QHash<QString, Plan> plans {
        { u"lumo"_s,
            { u"The assistant's desk: answers and drafts made from what this machine holds."_s,
                { u"Questions about any conversation, answered with sources"_s, u"What it knows, and what it may use"_s,
                    u"Agents and flows, and what they did"_s } } },
        { u"gtm"_s,
            { u"Going to market: who might buy, and what happens next."_s,
                { u"Deals by stage, beside the people they belong to"_s, u"Campaigns and their replies"_s,
                    u"Tasks that move a deal on"_s } } },
        { u"cx"_s,
            { u"Customers: who needs help, and how it goes."_s,
                { u"Open requests over every channel"_s, u"Promises made, and when they are due"_s,
                    u"What customers keep asking"_s } } },
        { u"ops"_s,
            { u"Operations: projects, their updates, and the questions that wait for you."_s,
                { u"Projects with their state at a glance"_s, u"Updates as they come in"_s,
                    u"Decisions that only you can take"_s } } },
    };
    return plans.value(hub);
}

}

PlannedHub::PlannedHub(const Hub& hub, QObject* parent)
    : QObject(parent)
    , m_label(hub.label)
    , m_icon(hub.icon)
{
    Plan plan = planOf(hub.id);
    m_purpose = std::move(plan.purpose);
    m_parts = std::move(plan.parts);
}

}
