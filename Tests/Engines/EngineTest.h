#pragma once

#include "Engines/EngineProcesses.h"
#include "Foundation/Literals.h"
#include "Support/AccountNamed.h"
#include "Support/EngineWorld.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"

#include <gtest/gtest.h>

namespace corvane {

/// A manager with fake engines and one WhatsApp account, "shop".
class EngineTest : public testing::Test {
protected:
    WAStatus status() const { return world.engines.runtime(shop.id).status; }
    RuntimeState runtime() const { return world.engines.runtime(shop.id); }

    void startShop()
    {
        world.launcher.expect(FakeLauncher::stays());
        world.engines.start(shop);
    }

    /// Prints one event from the shop's engine and waits until it is handled.
    void report(const QJsonObject& event)
    {
        world.launcher.last().printEvent(event);
        world.settle();
    }

    void handle(const QByteArray& json)
    {
        world.engines.handleEvent(shop.id, QString::fromUtf8(json), Speaker::Current);
    }

    QString cell(const QString& sql) { return world.cell(sql); }

    LogCapture logs;
    EngineWorld world;
    const Account shop = accountNamed(u"shop"_s);
};

}
