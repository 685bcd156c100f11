#include "Platform/HotKey.h"

#include "Foundation/UserDefaults.h"
#include "Support/FakeShortcuts.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <optional>

using namespace corvane;
using Kind = GlobalShortcutState::Kind;

namespace {

class HotKeyTest : public testing::Test {
protected:
    HotKeyTest() { open(&shortcuts); }
    void open(GlobalShortcuts* by)
    {
        key.emplace(HotKey::Definition { "capture", "Capture", { "Ctrl+Alt+N", "Ctrl+Alt+M" }, "corvane capture" }, by,
            defaults);
        QObject::connect(&*key, &HotKey::pressed, [this] { heard += 'p'; });
        QObject::connect(&*key, &HotKey::released, [this] { heard += 'r'; });
        QObject::connect(&*key, &HotKey::changed, [this] { heard += 'c'; });
    }
    bool choose(Qt::Key pressed, Qt::KeyboardModifiers modifiers) { return key->choose(pressed, int(modifiers)); }

    TemporaryHome home;
    UserDefaults defaults { home.path("defaults.ini") };
    FakeShortcuts shortcuts;
    QString heard;
    std::optional<HotKey> key;
};

}

TEST_F(HotKeyTest, itIsBoundOnceAndReleasedOnce)
{
    EXPECT_EQ(key->id() + '/' + key->label() + '/' + key->keys(), "capture/Capture/Ctrl+Alt+N");
    EXPECT_EQ(key->bindingText(), "install=1 register=0 (Ctrl+Alt+N)");
    shortcuts.taken = { "Ctrl+Alt+N" };
    key->unbind();
    key->bind();
    key->bind();
    EXPECT_EQ(shortcuts.bound, QStringList("Ctrl+Alt+N Ctrl+Alt+M"));
    EXPECT_TRUE(key->isBound());
    EXPECT_EQ(key->keys(), "Ctrl+Alt+M") << "those in force, not the wanted ones";
    EXPECT_EQ(key->bindingText(), "install=1 register=1 (Ctrl+Alt+M)");
    EXPECT_EQ(key->hint(), "Works in every program.");
    EXPECT_FALSE(key->isWrong());
    for (const QString& id : { "capture", "other" }) {
        Q_EMIT shortcuts.pressed(id);
        Q_EMIT shortcuts.released(id);
        Q_EMIT shortcuts.stateChanged(id);
    }
    EXPECT_EQ(heard, "cprc") << "what is said of another key does not count";
    key->unbind();
    EXPECT_TRUE(shortcuts.states.isEmpty());
    key->bind();
    EXPECT_EQ(shortcuts.bound.size(), 2);
    key.reset();
    EXPECT_TRUE(shortcuts.states.isEmpty());
}

TEST_F(HotKeyTest, theHintSaysWhatTheDesktopDoesWithIt)
{
    const auto hintOf = [this](Kind kind) {
        shortcuts.states["capture"] = { kind, "Ctrl+Alt+M" };
        return key->hint() + (key->isWrong() ? " !" : "");
    };
    const QString other = "This desktop has no global shortcuts for programs. In the keyboard settings of the desktop, "
                          "bind a key to: corvane capture !";
    EXPECT_EQ(hintOf(Kind::Bound), "Works in every program.");
    EXPECT_EQ(hintOf(Kind::Waiting), "The desktop manages this shortcut.");
    EXPECT_EQ(hintOf(Kind::Taken), "Another program holds Ctrl+Alt+M. Choose another key. !");
    EXPECT_EQ(hintOf(Kind::Unbound), "Off");
    EXPECT_EQ(hintOf(Kind::Unavailable), other);
    open(nullptr);
    key->bind();
    key->unbind();
    EXPECT_EQ(key->hint() + (key->isWrong() ? " !" : ""), other);
    EXPECT_FALSE(key->isBound());
    EXPECT_EQ(key->bindingText(), "install=0 register=0 (Ctrl+Alt+N)");
}

TEST_F(HotKeyTest, whatAPersonTypesTextWithIsNoKeyForIt)
{
    EXPECT_FALSE(choose(Qt::Key_A, Qt::NoModifier));
    EXPECT_FALSE(choose(Qt::Key_A, Qt::ShiftModifier));
    EXPECT_FALSE(choose(Qt::Key_A, Qt::KeypadModifier));
    for (const Qt::Key modifier : { Qt::Key_Shift, Qt::Key_Control, Qt::Key_ScrollLock })
        EXPECT_FALSE(choose(modifier, Qt::ControlModifier));
    EXPECT_EQ(heard, "");
    EXPECT_EQ(key->keys(), "Ctrl+Alt+N");
    const std::tuple<Qt::Key, Qt::KeyboardModifiers, QString> keys[] { { Qt::Key_F1, {}, "F1" },
        { Qt::Key_F35, {}, "F35" }, { Qt::Key_A, Qt::ShiftModifier | Qt::MetaModifier, "Meta+Shift+A" },
        { Qt::Key_A, Qt::AltModifier | Qt::KeypadModifier, "Alt+A" } };
    for (const auto& [pressed, modifiers, text] : keys) {
        EXPECT_TRUE(choose(pressed, modifiers));
        EXPECT_EQ(key->keys(), text);
    }
    EXPECT_EQ(heard, "cccc");
    EXPECT_TRUE(shortcuts.bound.isEmpty()) << "a key that is off stays off";
    key->bind();
    EXPECT_TRUE(choose(Qt::Key_B, Qt::ControlModifier));
    EXPECT_EQ(shortcuts.bound, QStringList({ "Alt+A", "Ctrl+B" }));
    EXPECT_EQ(shortcuts.state("capture").keys, "Ctrl+B");
    open(&shortcuts);
    EXPECT_EQ(key->keys(), "Ctrl+B") << "also at the next start";
}
