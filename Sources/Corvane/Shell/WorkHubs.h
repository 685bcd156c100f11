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

/// Contexts, items, decisions, questions and projects for the palette.
QList<PaletteItem> foundWork(LocalDB& db, const QString& query);

/// Opens a palette result in its hub.
void openFoundWork(Screens& screens, const QString& id);

}
