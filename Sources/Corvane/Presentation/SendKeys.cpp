#include "Presentation/SendKeys.h"

#include "Foundation/UserDefaults.h"

namespace corvane {

namespace {

const QString returnSendsKey = QStringLiteral("Corvane.returnSends");

}

bool returnSends(const UserDefaults& defaults)
{
    return defaults.boolean(returnSendsKey).value_or(false);
}

void setReturnSends(UserDefaults& defaults, bool on)
{
    defaults.setBoolean(returnSendsKey, on);
}

QString sendKeys(const UserDefaults& defaults)
{
    return returnSends(defaults) ? QStringLiteral("Return") : QStringLiteral("Ctrl+Return");
}

}
