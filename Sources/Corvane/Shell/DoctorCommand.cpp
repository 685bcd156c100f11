#include "Shell/DoctorCommand.h"

#include "AI/CLIChatService.h"
#include "AI/ModelChoice.h"
#include "Calendar/CalendarStore.h"
#include "Care/Doctor/Doctor.h"
#include "Foundation/Json.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AddressBook.h"
#include "Platform/CalendarSource.h"
#include "Platform/Linux/Services.h"
#include "Platform/SecretFile.h"
#include "Shell/TerminalText.h"

#include <QJsonArray>
#include <QTextStream>
#include <algorithm>

namespace corvane {

namespace {

constexpr int wrongUse = 2;

/// Without asking the keyring, which might ask the user.
QHash<QString, QString> secretsInFile(const AppPaths& paths)
{
    QHash<QString, QString> secrets;
    const SecretPlaces places = SecretFile(paths.secretsFile()).read();
    for (auto each = places.begin(); each != places.end(); ++each) {
        if (each->where == SecretPlace::Where::File)
            secrets.insert(each.key(), each->value);
    }
    return secrets;
}

QJsonObject jsonOf(const Finding& finding)
{
    return { { u"id"_s, finding.id }, { u"title"_s, finding.title }, { u"state"_s, finding.state() },
        { u"found"_s, finding.words }, { u"advice"_s, finding.advice }, { u"canFix"_s, finding.canFix } };
}

TextColour colourOf(Health health)
{
    switch (health) {
    case Health::Good:
        return TextColour::Green;
    case Health::Warning:
        return TextColour::Yellow;
    case Health::Failure:
        return TextColour::Red;
    }
    Q_UNREACHABLE();
}

void print(const QList<Finding>& findings, QTextStream& out)
{
    qsizetype width = 0;
    for (const Finding& finding : findings)
        width = std::max(width, finding.title.size());
    for (const Finding& finding : findings) {
        const char* const sign = finding.health == Health::Good ? "ok"
            : finding.health == Health::Warning                 ? "!!"
                                                                : "XX";
        out << coloured(QString::fromLatin1(sign), colourOf(finding.health)) << ' '
            << finding.title.leftJustified(width) << "  " << finding.words << '\n';
        if (!finding.advice.isEmpty() && finding.health != Health::Good)
            out << QString(width + 5, u' ') << finding.advice << '\n';
    }
}

}

int runDoctor(const TextCall& call)
{
    const auto& [paths, arguments, out, errors] = call;
    QStringList options = arguments;
    const bool asJson = options.removeAll(u"--json"_s) > 0;
    const bool fixes = options.removeAll(u"--fix"_s) > 0;
    if (!options.isEmpty()) {
        errors << "Usage: corvane doctor [--fix] [--json]\n";
        return wrongUse;
    }
    const SystemScheduler scheduler;
    const UserDefaults defaults(paths.defaultsFile);
    CheckedProfile profile = checkedProfile(paths, defaults, scheduler.nowMs());
    profile.secrets = secretsInFile(paths);
    profile.modelServer = modelChoice(defaults).serverUrl;
    profile.codexPlaces = codexCandidates(paths.home);
    profile.hasCalendars = makeCalendarSource(paths)->access(calendarPlaces(defaults)) == CalendarAccess::Full;
    profile.hasContacts = makeAddressBook(paths)->requestAccess(addressBookFolders(defaults));
    QList<Finding> findings = runChecks(profile);
    const QStringList done = fixes ? fixFindings(profile, findings) : QStringList();
    if (fixes)
        findings = runChecks(profile);
    if (asJson) {
        QJsonArray array;
        for (const Finding& finding : findings)
            array.append(jsonOf(finding));
        out << compactJson({ { u"findings"_s, array }, { u"fixed"_s, QJsonArray::fromStringList(done) } }) << '\n';
        return int(worst(findings));
    }
    for (const QString& words : done)
        out << words << '\n';
    if (fixes && done.isEmpty())
        out << "There was nothing to put right.\n";
    print(findings, out);
    return int(worst(findings));
}

}
