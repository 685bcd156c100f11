#include "Shell/ExchangeCommand.h"

#include "Care/Exchange/Import.h"
#include "Engines/AccountStore.h"
#include "Foundation/Literals.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Interruption.h"
#include "Platform/PrivateFile.h"
#include "Shell/CalendarCommand.h"
#include "Store/Core/LocalDB.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QTextStream>

namespace corvane {

namespace {

constexpr int wrongUse = 2;

int report(const TextCall& call, const Result<ExchangeCounts>& counts, const QString& verb)
{
    if (!counts) {
        call.errors << counts.error().message << '\n';
        return 1;
    }
    QStringList words;
    for (auto each = counts->begin(); each != counts->end(); ++each) {
        if (each.value() > 0)
            words.append(each.key() + u' ' + QString::number(each.value()));
    }
    call.out << verb << ": " << (words.isEmpty() ? u"nothing new"_s : words.join(u", "_s)) << ".\n";
    return 0;
}

QStringList ownAddresses(const AppPaths& paths)
{
    const AccountStore store(paths.applicationSupport);
    QStringList addresses;
    for (const Account& account : store.accounts()) {
        if (account.email)
            addresses.append(*account.email);
    }
    return addresses;
}

}

int runExport(const TextCall& call)
{
    if (call.arguments.size() != 1) {
        call.errors << "Usage: corvane export FOLDER\n";
        return wrongUse;
    }
    const auto stopped = std::make_shared<std::atomic<bool>>(false);
    const Interruption interruption(*stopped);
    const QString folder = QFileInfo(call.arguments.first()).absoluteFilePath();
    return report(call, exportProfile(call.paths, folder, stopped), u"Exported"_s);
}

int runImport(const TextCall& call)
{
    QCommandLineParser parser;
    const QCommandLineOption account(u"account"_s, {}, u"NAME"_s, u"imported"_s);
    const QCommandLineOption own(u"own-address"_s, {}, u"ADDRESS"_s);
    parser.addOptions({ account, own });
    if (!parser.parse(QStringList(u"import"_s) + call.arguments) || parser.positionalArguments().size() != 1) {
        call.errors << "Usage: corvane import [--account NAME] [--own-address ADDRESS] PATH\n";
        return wrongUse;
    }
    const QFileInfo source(parser.positionalArguments().first());
    const QString ending = source.suffix().toLower();
    if (ending == "ics"_L1)
        return importCalendarFile(call.paths, source.absoluteFilePath(), call.out);
    if (!source.exists()) {
        call.errors << "There is no file " << source.filePath() << ".\n";
        return 1;
    }
    keepFilesPrivate({ call.paths.applicationSupport, QFileInfo(call.paths.defaultsFile).path() });
    SystemScheduler scheduler;
    UserDefaults defaults(call.paths.defaultsFile);
    NotificationCentre notifications;
    LocalDB db(call.paths.database(), { call.paths.resources, call.paths.home }, scheduler, defaults, notifications);
    const QString verb = u"Imported"_s;
    if (source.isDir())
        return report(call, importFolder(db, source.absoluteFilePath()), verb);
    if (ending == "vcf"_L1)
        return report(call, importCards(db, source.absoluteFilePath()), verb);
    if (ending == "mbox"_L1 || ending == "eml"_L1)
        return report(call,
            importMails(
                db, source.absoluteFilePath(), parser.value(account), ownAddresses(call.paths) + parser.values(own)),
            verb);
    call.errors << "It is neither a folder nor an .mbox, .eml, .vcf or .ics file.\n";
    return wrongUse;
}

}
