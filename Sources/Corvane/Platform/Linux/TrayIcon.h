#pragma once

#include <QImage>

namespace corvane {

enum class UnreadMark { Absent, Present };

/// The program's sign at `size` pixels square: a bird's head that is a speech bubble, on a round tile; unread
/// messages put a dot at its corner.
QImage trayIcon(int size, UnreadMark mark);

}
