#pragma once

#include <QImage>

namespace corvane {

enum class TrayMark { None, Unread, Waiting, Recording };

/// The program's icon at `size` pixels square: a bird's head as a speech bubble on a round tile. A red dot in the
/// corner marks unread messages, an amber one pending decisions, a red ring with a dot a recording.
QImage trayIcon(int size, TrayMark mark);

}
