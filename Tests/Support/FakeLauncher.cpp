#include "Support/FakeLauncher.h"

#include "Foundation/Literals.h"

#include <QJsonDocument>
#include <gtest/gtest.h>

namespace corvane {

Result<void> FakeChild::write(const QByteArray& bytes)
{
    if (!m_running || terminated)
        return failure(u"standard input is closed"_s);
    if (!writeFailure.isEmpty())
        return failure(writeFailure);
    written += bytes;
    return {};
}

bool FakeChild::withdraw(const QByteArray& bytes)
{
    if (!isClogged || !written.contains(bytes))
        return false;
    written.remove(written.indexOf(bytes), bytes.size());
    return true;
}

void FakeChild::print(const QString& lines)
{
    ASSERT_TRUE(lines.endsWith(u'\n'));
    const std::shared_ptr<void> hold = std::make_shared<int>();
    m_lastHold = hold;
    m_handlers.output({ lines.toUtf8(), hold });
}

void FakeChild::printEvent(const QJsonObject& event)
{
    print(u"@@CORVANE@@"_s + QString::fromUtf8(QJsonDocument(event).toJson(QJsonDocument::Compact)) + u'\n');
}

void FakeChild::exit(int code)
{
    ASSERT_TRUE(m_running) << "a child ends once";
    m_running = false;
    m_handlers.exited(code);
}

QList<QJsonObject> FakeChild::commands() const
{
    QList<QJsonObject> result;
    const QByteArrayList lines = written.split('\n');
    for (const QByteArray& line : lines.first(lines.size() - 1)) {
        const QJsonDocument document = QJsonDocument::fromJson(line);
        EXPECT_TRUE(document.isObject()) << line.constData();
        result.append(document.object());
    }
    EXPECT_TRUE(lines.last().isEmpty()) << "a line without its end: " << lines.last().constData();
    return result;
}

void FakeLauncher::exitTerminated()
{
    for (const auto& child : children) {
        if (child->terminated && child->isRunning())
            child->exit();
    }
}

FakeLauncher::~FakeLauncher()
{
    EXPECT_TRUE(m_script.empty()) << "launches that never came: " << m_script.size();
}

Result<std::shared_ptr<ChildProcess>> FakeLauncher::start(const ProcessSpec& spec, Handlers handlers)
{
    if (m_script.empty()) {
        ADD_FAILURE() << "a launch that nobody expected: " << qPrintable(spec.arguments.join(u' '));
        return failure(u"the script has run out"_s);
    }
    const Launch launch = m_script.front();
    m_script.pop_front();
    if (launch.kind == Launch::Kind::Fails)
        return failure(launch.reason);
    if (launch.kind == Launch::Kind::Real)
        return realLauncher->start(spec, std::move(handlers));
    auto child = std::make_shared<FakeChild>(spec, std::move(handlers), 1000 + children.size());
    children.append(child);
    if (launch.kind == Launch::Kind::Crashes)
        m_crashes.push_back(m_scheduler.after(Milliseconds(0), [child = child.get()] { child->exit(-11); }));
    return child;
}

}
