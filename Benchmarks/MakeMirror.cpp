#include "Mirror.h"

#include <QCoreApplication>
#include <QtDebug>

/// make-mirror PATH [CONTACTS CONVERSATIONS MESSAGES]: generates a database for manual measurements.
int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    corvane::bench::MirrorSize size;
    if (arguments.size() != 2 && arguments.size() != 5)
        qFatal("usage: make-mirror PATH [CONTACTS CONVERSATIONS MESSAGES]");
    if (arguments.size() == 5)
        size = { arguments[2].toInt(), arguments[3].toInt(), arguments[4].toInt() };
    if (size.contacts < 1 || size.conversations < size.contacts || size.messages < 0)
        qFatal("there must be a contact at least, and no fewer conversations than contacts");
    corvane::bench::makeMirror(arguments[1], size);
}
