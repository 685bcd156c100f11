#pragma once

#include "Presentation/Commands.h"
#include "Work/WorkServices.h"

namespace corvane {

class CorvaneApp;
class Screens;
struct FoundRecord;

/// The services for the hubs of the room Work.
WorkServices workServices(CorvaneApp& app);

QList<Command> workCommands();

/// Opens a result of a search for work in its hub.
void openWork(Screens& screens, const FoundRecord& record);

}
