#pragma once

#include "Store/Search/RecordQueries.h"

namespace corvane {

class Screens;

/// Opens a search result in its place: a call at the words, a person's notes, an event on its day, work in its hub.
/// Does nothing for a result without a person or a screen.
void openFound(Screens& screens, const FoundRecord& record, const QString& words);

}
