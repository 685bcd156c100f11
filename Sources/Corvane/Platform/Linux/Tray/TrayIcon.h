#pragma once

#include <QImage>

namespace corvane {

enum class TrayMark { None, Unread, Waiting, Recording };

/// The program's sign at `size` pixels square: a bird's head that is a speech bubble, on a round tile; what
/// is unread puts a red dot at its corner, what waits for a decision an amber one, a recording a red ring with a dot in
/// it.
QImage trayIcon(int size, TrayMark mark);

}
