#pragma once

#include "Inbox/List/CommandPalette.h"
#include "Work/WorkServices.h"

namespace corvane {

class CorvaneApp;
class LocalDB;
class Screens;

/// The services for the hubs of the room Work.
WorkServices workServices(CorvaneApp& app);

QList<Command> workCommands();

/// Contexts, items, decisions, questions and projects for the palette, last changed first.
QList<PaletteItem> foundWork(LocalDB& db, const QString& query);

/// Opens a result of a search for work in its hub.
void openWork(Screens& screens, const FoundRecord& record);

}
