#include "Foundation/UserDefaults.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

using namespace corvane;

namespace {

const QString file = QStringLiteral("config/Corvane/defaults.ini");
const QString name = QStringLiteral("nimb.name");

}

TEST(UserDefaults, valuesComeBackAsWhatTheyWere)
{
    const TemporaryHome home;
    const QString text = QStringLiteral("a, b; \"c\" = %1 ü😀\nnext \\ line");
    {
        UserDefaults defaults(home.path(file));
        EXPECT_EQ(defaults.text(name), std::nullopt);
        defaults.setText(name, text);
        defaults.setText(QStringLiteral("empty"), QString());
        defaults.setBoolean(QStringLiteral("Corvane.flag"), false);
        defaults.setInteger(QStringLiteral("large"), std::numeric_limits<qint64>::min());
        defaults.setText(QStringLiteral("gone"), QStringLiteral("x"));
        defaults.remove(QStringLiteral("gone"));
    }
    const UserDefaults defaults(home.path(file));
    EXPECT_EQ(defaults.text(name), text);
    EXPECT_EQ(defaults.text(QStringLiteral("empty")), QString());
    EXPECT_EQ(defaults.boolean(QStringLiteral("Corvane.flag")), false);
    EXPECT_EQ(defaults.integer(QStringLiteral("large")), std::numeric_limits<qint64>::min());
    EXPECT_EQ(defaults.text(QStringLiteral("gone")), std::nullopt);
    EXPECT_EQ(defaults.boolean(name), std::nullopt);
    EXPECT_EQ(defaults.integer(name), std::nullopt);
    EXPECT_FALSE(QFile::exists(home.path(file + QStringLiteral(".damaged"))));
}

TEST(UserDefaults, aFileEditedByHandIsUnderstood)
{
    const TemporaryHome home;
    home.write(file, "nimb.name=Ann, Bob\non=TRUE\noff=0\nsize= 12 \n");
    const UserDefaults defaults(home.path(file));
    EXPECT_EQ(defaults.text(name), QStringLiteral("Ann, Bob"));
    EXPECT_EQ(defaults.boolean(QStringLiteral("on")), true);
    EXPECT_EQ(defaults.boolean(QStringLiteral("off")), false);
    EXPECT_EQ(defaults.integer(QStringLiteral("size")), 12);
}

TEST(UserDefaults, aFileThatDoesNotReadIsKeptBeforeItIsWrittenOver)
{
    const TemporaryHome home;
    const QByteArray garbage = QByteArray("\x7f"
                                          "ELF\0\0\xff[unclosed\nno value here\n",
        30);
    home.write(file, garbage);
    const QString copy = file + QStringLiteral(".damaged");
    {
        UserDefaults defaults(home.path(file));
        EXPECT_EQ(defaults.text(name), std::nullopt);
        defaults.synchronise();
        EXPECT_FALSE(QFile::exists(home.path(copy))) << "nothing is written, so nothing is copied";
        EXPECT_EQ(home.read(file), garbage);
        defaults.setText(name, QStringLiteral("new"));
        defaults.setText(name, QStringLiteral("newer"));
    }
    EXPECT_EQ(home.read(copy), garbage);
    EXPECT_FALSE(QFile::exists(home.path(copy + QStringLiteral("-2"))));
    EXPECT_EQ(UserDefaults(home.path(file)).text(name), QStringLiteral("newer"));

    home.write(file, "second " + garbage);
    UserDefaults(home.path(file)).setText(name, QStringLiteral("again"));
    EXPECT_EQ(home.read(copy), garbage) << "an earlier copy stays";
    EXPECT_EQ(home.read(copy + QStringLiteral("-2")), "second " + garbage);
}
