#include "Care/Doctor/Doctor.h"

#include "Care/Doctor/Checks.h"

#include <algorithm>

namespace corvane {

namespace {

struct Check {
    const char16_t* id;
    const char16_t* title;
    CheckResult (*look)(const CheckedProfile& profile);
    std::optional<QString> (*fix)(const CheckedProfile& profile) = nullptr;
};

/// The log is checked before anything opens the database, which would recreate a missing one.
constexpr Check table[] {
    { u"disk", u"Disk", checks::disk },
    { u"folders", u"Folders", checks::folders, fixes::folders },
    { u"log", u"Database log", checks::databaseLog, fixes::databaseLog },
    { u"database", u"Database", checks::database },
    { u"schema", u"Tables", checks::schema, fixes::schema },
    { u"size", u"Database size", checks::databaseSize, fixes::databaseSize },
    { u"decisions", u"Record of decisions", checks::decisions },
    { u"accounts", u"Accounts", checks::accounts },
    { u"backups", u"Backups", checks::backups },
    { u"node", u"Node", checks::node },
    { u"engines", u"Engines", checks::engines },
    { u"tools", u"Tool server", checks::toolServer },
    { u"mail", u"Mail servers", checks::mailServers },
    { u"keyring", u"Keyring", checks::keyring },
    { u"notifications", u"Notifications", checks::notifications },
    { u"tray", u"Tray", checks::tray },
    { u"portals", u"Portals", checks::portals },
    { u"sound", u"Sound", checks::sound },
    { u"speech", u"Speech recognition", checks::speech },
    { u"model", u"Language model", checks::modelServer },
    { u"codex", u"Codex", checks::codex },
    { u"browser", u"Browser", checks::browser },
    { u"calendars", u"Calendars", checks::calendars },
    { u"contacts", u"Contacts", checks::contacts },
    { u"clock", u"Clock", checks::clock },
};

QString text(const char16_t* words)
{
    return QString::fromUtf16(words);
}

}

QString Finding::state() const
{
    switch (health) {
    case Health::Good:
        return u"good"_s;
    case Health::Warning:
        return u"warning"_s;
    case Health::Failure:
        return u"failure"_s;
    }
    Q_UNREACHABLE();
}

QString Finding::stateText() const
{
    switch (health) {
    case Health::Good:
        return u"Good"_s;
    case Health::Warning:
        return u"Warning"_s;
    case Health::Failure:
        return u"Broken"_s;
    }
    Q_UNREACHABLE();
}

QList<Finding> runChecks(const CheckedProfile& profile, const CheckProgress& progress)
{
    QList<Finding> findings;
    for (const Check& check : table) {
        if (progress.stopped && *progress.stopped)
            break;
        progress.begins(text(check.title));
        const CheckResult result = check.look(profile);
        findings.append({ text(check.id), text(check.title), result.health, result.words, result.advice,
            check.fix && result.health != Health::Good });
    }
    return findings;
}

QStringList fixFindings(const CheckedProfile& profile, const QList<Finding>& findings)
{
    QStringList done;
    for (const Check& check : table) {
        const auto found = std::ranges::find(findings, text(check.id), &Finding::id);
        if (found == findings.end() || !found->canFix)
            continue;
        if (const auto words = check.fix(profile))
            done.append(*words);
    }
    return done;
}

Health worst(const QList<Finding>& findings)
{
    const auto found = std::ranges::max_element(findings, {}, &Finding::health);
    return found == findings.end() ? Health::Good : found->health;
}

}
