#include "Desk/CaptureCommands.h"

#include "Desk/QuickCapture.h"

namespace corvane {

QList<Command> captureCommands(QuickCapture& capture)
{
    return { { .id = QStringLiteral("capture"),
        .action = QStringLiteral("Capture a task or a note"),
        .run = [&capture] {
            capture.toggle();
        } } };
}

}
