#pragma once

namespace corvane {

/// In which colours and size a picture is drawn.
enum class Look { Light, Dark, LightSmall, DarkSmall };

}
