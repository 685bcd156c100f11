#include "AI/LocalAIAvailability.h"

#include "Support/FakeLanguageModel.h"

using namespace corvane;

namespace {

/// A machine on which every check fails.
FakeMachineFacts worstMachine()
{
    FakeMachineFacts machine;
    machine.running = { 5, 9, 99 };
    machine.now = { true, ThermalState::Critical, true, { "Battery Power" }, (Q_UINT64_C(1) << 33) - 1,
        (Q_INT64_C(1) << 31) - 1 };
    return machine;
}

}

TEST(LocalAIAvailability, theFirstConditionThatHoldsIsNamedAndTheLastOnesBoundsPass)
{
    struct Step {
        QString rawValue;
        QString words;
        void (*mend)(FakeMachineFacts&);
    };
    const Step steps[] {
        { "translatedProcess",
            "Speech recognition on this computer needs the program that was built for this processor, not a translated "
            "one.",
            [](FakeMachineFacts& machine) {
                machine.now.isTranslated = false;
            } },
        { "unsupportedPlatform", "Speech recognition on this computer needs a newer system.",
            [](FakeMachineFacts& machine) {
                machine.running = machine.minimum;
            } },
        { "lowPowerMode", "Power saver is on. Local AI is paused.",
            [](FakeMachineFacts& machine) {
                machine.now.lowPowerMode = false;
            } },
        { "onBattery", "This computer is on battery. Connect power before running local transcription.",
            [](FakeMachineFacts& machine) {
                machine.now.powerSourceStates = { "", "AC Power", "Battery Power" };
            } },
        { "thermalPressure", "Thermal pressure is high. Local AI is paused until the computer cools down.",
            [](FakeMachineFacts& machine) {
                machine.now.thermal = ThermalState::Serious;
            } },
        { "thermalPressure", "Thermal pressure is high. Local AI is paused until the computer cools down.",
            [](FakeMachineFacts& machine) {
                machine.now.thermal = ThermalState::Fair;
            } },
        { "insufficientMemory", "This computer does not have enough memory available for local transcription.",
            [](FakeMachineFacts& machine) {
                machine.now.physicalMemoryBytes += 1;
            } },
        { "diskLow", "Not enough free disk space for local transcription.",
            [](FakeMachineFacts& machine) {
                machine.now.freeDiskBytes += 1;
            } },
    };
    FakeMachineFacts machine = worstMachine();
    const LocalAIAvailability gate(machine);
    for (const Step& step : steps) {
        const auto snapshot = gate.snapshot(true, true);
        ASSERT_TRUE(snapshot.stopCondition.has_value()) << qPrintable(step.rawValue);
        EXPECT_EQ(rawValue(*snapshot.stopCondition), step.rawValue);
        const auto onBattery = gate.snapshot(true, true, BatteryWork::Allowed);
        EXPECT_EQ(rawValue(*onBattery.stopCondition), step.rawValue == "onBattery" ? "thermalPressure" : step.rawValue);
        EXPECT_EQ(snapshot.statusText(), step.words);
        EXPECT_EQ(snapshot.supportsOnDeviceWork,
            step.rawValue != "translatedProcess" && step.rawValue != "unsupportedPlatform");
        step.mend(machine);
    }
    for (const qint64 freeDisk : { machine.now.freeDiskBytes, qint64(-1) }) {
        machine.now.freeDiskBytes = freeDisk;
        EXPECT_EQ(gate.snapshot(true, false).stopCondition, std::nullopt);
    }
    EXPECT_EQ(gate.snapshot(true, false).statusText(), "Ready for on-device voice.");
    EXPECT_EQ(gate.snapshot(false, true).statusText(), "Speech recognition on this computer is supported.");
}

TEST(LocalAIAvailability, theFirstPowerSourceThatSaysWhatItIsDecides)
{
    FakeMachineFacts machine;
    const LocalAIAvailability gate(machine);
    const std::pair<QStringList, QString> cases[] { { {}, "unknown" }, { { "", "UPS Power" }, "unknown" },
        { { "", "Battery Power", "AC Power" }, "battery" }, { { "AC Power", "Battery Power" }, "acPower" } };
    for (const auto& [states, expected] : cases) {
        machine.now.powerSourceStates = states;
        EXPECT_EQ(rawValue(gate.snapshot(false, false).powerSource), expected);
    }
}
