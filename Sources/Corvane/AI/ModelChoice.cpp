#include "AI/ModelChoice.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"

namespace corvane {

namespace {

const QString urlKey = u"nimb.localModelUrl"_s;
const QString modelKey = u"nimb.localModel"_s;
const QString elsewhereKey = u"nimb.localModelElsewhere"_s;

void set(UserDefaults& defaults, const QString& key, const QString& text)
{
    if (text.trimmed().isEmpty())
        defaults.remove(key);
    else
        defaults.setText(key, text.trimmed());
}

}

SystemLanguageModel::Choice modelChoice(const UserDefaults& defaults)
{
    return { defaults.text(urlKey).value_or(QString()), defaults.text(modelKey).value_or(QString()),
        defaults.text(elsewhereKey).value_or(QString()) };
}

void setModelChoice(UserDefaults& defaults, const SystemLanguageModel::Choice& choice)
{
    set(defaults, urlKey, choice.serverUrl);
    set(defaults, modelKey, choice.model);
    set(defaults, elsewhereKey, choice.allowedElsewhere);
}

}
