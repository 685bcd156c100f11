#include "Support/EnginesNode.h"
#include "Support/Places.h"

#include <QProcess>
#include <gtest/gtest.h>

namespace corvane {

QString enginesNode()
{
    QProcess find;
    find.start(QStringLiteral(CORVANE_SOURCE "/tools/find-node"), QStringList());
    find.waitForFinished();
    const QString node = QString::fromLocal8Bit(find.readAllStandardOutput()).trimmed();
    EXPECT_NE(node, QString()) << "no Node 22.6 or newer: tools/setup check brings one";
    return node;
}

}
