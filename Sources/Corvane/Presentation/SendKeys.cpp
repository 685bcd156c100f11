#include "Presentation/SendKeys.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"

namespace corvane {

namespace {

const QString returnSendsKey = u"Corvane.returnSends"_s;

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
    return returnSends(defaults) ? u"Return"_s : u"Ctrl+Return"_s;
}

}
