#include "Browser/BrowserPicker.h"

#include "Browser/ChromiumBrowserController.h"
#include "Presentation/BodyText.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace corvane {

BrowserPicker::BrowserPicker(ChromiumBrowserController& browser, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_browser(browser)
    , m_field(scheduler, [this](const QString& value) { answer(value); }, this)
{
    connect(&browser.page(), &BrowserPage::valueAsked, this, [this](const QJsonObject& report, int context) {
        m_context = context;
        m_place = { report["x"_L1].toDouble(), report["y"_L1].toDouble() };
        report["kind"_L1].toString() == "list"_L1 ? openList(report) : openField(report);
    });
}

void BrowserPicker::openList(const QJsonObject& report)
{
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
    Q_EMIT opened();
}

void BrowserPicker::openField(const QJsonObject& report)
{
    const auto kind = browserFieldKind(report["type"_L1].toString());
    if (!kind)
        return;
    const auto limit = [&](QLatin1StringView name) {
        return browserFieldValue(*kind, report[name].toString()).value_or(QString());
    };
    m_field.open({ .kind = *kind,
                     .label = BodyText::printable(report["label"_L1].toString()),
                     .least = limit("min"_L1),
                     .most = limit("max"_L1),
                     .isRequired = report["required"_L1].toBool() },
        report["value"_L1].toString(), m_place);
}

void BrowserPicker::choose(const QString& id)
{
    answer(id.toInt());
}

void BrowserPicker::answer(const QJsonValue& value)
{
    DevToolsConnection* const connection = m_browser.connection();
    if (!connection)
        return;
    const QString list = QString::fromUtf8(QJsonDocument(QJsonArray { value }).toJson(QJsonDocument::Compact));
    connection->call(u"Runtime.evaluate"_s,
        { { u"expression"_s, u"corvaneChoose(...%1)"_s.arg(list) }, { u"contextId"_s, m_context } });
}

}
