// The login entry on a temporary XDG_CONFIG_HOME.
#include "app/platform/Autostart.h"
#include "support/TestSupport.h"

#include <QProcess>

namespace {

TEST(Autostart, WritesAnEntryTheValidatorAcceptsAndRemovesIt) {
    TempHome home; // XDG_CONFIG_HOME is its "config" folder
    const QString entry = home.file(QStringLiteral("config/autostart/tarvo.desktop"));
    ASSERT_EQ(Autostart::EntryPath(), entry);
    ASSERT_TRUE(Autostart::Apply(true, QStringLiteral("/opt/My Apps/50%/tarvo")));
    EXPECT_TRUE(Autostart::IsEnabled());
    const QByteArray text = ReadFileBytes(entry);
    EXPECT_TRUE(text.contains("\nExec=\"/opt/My Apps/50%%/tarvo\"\n")) << text.constData();
    EXPECT_TRUE(text.contains("\nX-GNOME-Autostart-enabled=true\n"));
    QProcess validate;
    validate.start(QStringLiteral("desktop-file-validate"), {entry});
    ASSERT_TRUE(validate.waitForFinished())
        << "desktop-file-validate (desktop-file-utils) is missing";
    EXPECT_EQ(validate.exitCode(), 0) << validate.readAll().constData();
    // Inside quotes ", `, $ and \ take a backslash, and each backslash is
    // doubled again as the value is also an escaped string.
    EXPECT_TRUE(Autostart::EntryText(QStringLiteral("/a$b/c\\d"))
                    .contains("\nExec=\"/a\\\\$b/c\\\\\\\\d\"\n"));

    ASSERT_TRUE(Autostart::Apply(false, {}));
    EXPECT_FALSE(Autostart::IsEnabled());
    EXPECT_TRUE(Autostart::Apply(false, {})) << "removing an absent entry is no failure";
}

} // namespace
