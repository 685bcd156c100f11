#include "Desk/QuickCapture.h"

#include "Store/Core/StoreWatch.h"
#include "Store/Work/WorkRecords.h"
#include "Support/FakeShortcuts.h"
#include "Support/StoreTest.h"

#include <QSignalSpy>

using namespace corvane;

namespace {

class QuickCaptureTest : public StoreTest {
protected:
    QStringList items()
    {
        QStringList found;
        for (const WorkItemRecord& item : fetchWorkItems(db, "ops", std::nullopt, 10))
            found << QStringList({ item.kind, item.title, item.status, item.priority, item.owner, item.source })
                         .join('|');
        return found;
    }

    LocalDB& db = open();
    FakeShortcuts keys;
    QuickCapture capture { db, &keys, m_defaults };
};

}

TEST_F(QuickCaptureTest, oneKeyOpensAndClosesItAndReturnKeepsTheWords)
{
    capture.registerHotKey();
    capture.registerHotKey();
    EXPECT_EQ(keys.bound, QStringList("Ctrl+Alt+N Ctrl+Alt+Shift+N"));
    Q_EMIT keys.pressed("dictate");
    EXPECT_FALSE(capture.isVisible());
    Q_EMIT keys.pressed("capture");
    EXPECT_TRUE(capture.isVisible());
    EXPECT_EQ(capture.hint(), "Saves as an Ops task — review anytime in the Work Console.");
    capture.setProperty("text", " Call Ana\n");
    capture.save();
    EXPECT_FALSE(capture.isVisible());
    EXPECT_EQ(items(), QStringList("task|Call Ana|open|normal|Oskel|quick-capture"));
    EXPECT_EQ(db.scalar("SELECT context_id IS NULL FROM work_item;"), "1");

    capture.toggle();
    EXPECT_EQ(capture.property("text").toString(), "") << "of the last time";
    QStringList kinds;
    for (const Choice& kind : QuickCapture::kinds())
        kinds.append(kind.id + u' ' + kind.label);
    EXPECT_EQ(kinds, QStringList({ "task Task", "note Note" }));
    capture.setProperty("kind", "note");
    EXPECT_EQ(capture.hint(), "Saves as an Ops note — review anytime in the Work Console.");
    capture.setProperty("text", " \n ");
    capture.save();
    capture.toggle();
    capture.setProperty("text", "never");
    EXPECT_EQ(capture.property("kind").toString(), "task") << "each time anew";
    const QSignalSpy shown(&capture, &QuickCapture::visibleChanged);
    capture.toggle();
    capture.close();
    EXPECT_EQ(shown.size(), 1);
    EXPECT_FALSE(capture.isVisible());
    EXPECT_EQ(items().size(), 1);

    int told = 0;
    db.watch().on(StoreSubject::Work, &capture, [&] { ++told; });
    EXPECT_TRUE(saveCapture(db, "note", "The kiln is cold"));
    EXPECT_TRUE(items().contains("note|The kiln is cold|open|normal|Oskel|quick-capture"));
    EXPECT_EQ(told, 1);
    db.exec("DROP TABLE work_item;");
    capture.toggle();
    capture.setProperty("text", "lost");
    capture.save();
    EXPECT_FALSE(capture.isVisible());
}

TEST_F(QuickCaptureTest, itsKeyIsChosenAndKeptAndSaysWhoHoldsIt)
{
    HotKey& key = capture.hotKey();
    EXPECT_EQ(key.hint(), "Off");
    keys.taken = { "Ctrl+Alt+N" };
    capture.registerHotKey();
    EXPECT_EQ(key.keys(), "Ctrl+Alt+Shift+N");
    EXPECT_FALSE(key.isWrong());
    keys.taken << "Ctrl+Shift+F5";
    EXPECT_FALSE(key.choose(Qt::Key_N, Qt::ShiftModifier)) << "it would be missed when typing";
    EXPECT_FALSE(key.choose(Qt::Key_Control, Qt::ControlModifier));
    EXPECT_TRUE(key.choose(Qt::Key_F5, Qt::ControlModifier | Qt::ShiftModifier));
    EXPECT_EQ(key.hint(), "Another program holds Ctrl+Shift+F5. Choose another key.");
    EXPECT_TRUE(key.isWrong());
    EXPECT_TRUE(key.choose(Qt::Key_F8, Qt::NoModifier));
    EXPECT_EQ(key.keys(), "F8");

    QuickCapture next(db, &keys, m_defaults);
    EXPECT_EQ(next.hotKey().keys(), "F8");
    QuickCapture nowhere(db, nullptr, m_defaults);
    nowhere.registerHotKey();
    EXPECT_TRUE(nowhere.hotKey().hint().endsWith("bind a key to: corvane capture"));
}
