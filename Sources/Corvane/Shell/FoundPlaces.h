#pragma once

#include "Store/Search/RecordQueries.h"

namespace corvane {

class Screens;

/// Opens what a search found where it is: the call at the words, the person's notes, the event on its day, the work in
/// its hub. What belongs to nobody and has no screen opens nothing.
void openFound(Screens& screens, const FoundRecord& record, const QString& words);

}
