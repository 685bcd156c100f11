#include "Browser/BrowserPicker.h"

#include "Browser/ChromiumBrowserController.h"
#include "Presentation/BodyText.h"

#include <QJsonArray>

namespace corvane {

BrowserPicker::BrowserPicker(ChromiumBrowserController& browser, QObject* parent)
    : QObject(parent)
    , m_browser(browser)
{
    connect(&browser.page(), &BrowserPage::listOpened, this, [this](const QJsonObject& report, int context) {
        m_context = context;
        m_choices.clear();
        const QJsonArray labels = report["choices"_L1].toArray();
        for (qsizetype i = 0; i < labels.size(); ++i) {
            Choice choice;
            choice.id = QString::number(i);
            choice.label = BodyText::printable(labels.at(i).toString());
            if (labels.at(i).isString())
                m_choices.append(choice);
        }
        m_chosen = QString::number(report["chosen"_L1].toInt());
        m_place = { report["x"_L1].toDouble(), report["y"_L1].toDouble() };
        Q_EMIT opened();
    });
}

void BrowserPicker::choose(const QString& id)
{
    if (DevToolsConnection* const connection = m_browser.connection())
        connection->call(u"Runtime.evaluate"_s,
            { { u"expression"_s, u"corvaneChoose(%1)"_s.arg(id.toInt()) }, { u"contextId"_s, m_context } });
}

}
