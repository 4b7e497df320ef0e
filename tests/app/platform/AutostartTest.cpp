// The login entry on a temporary XDG_CONFIG_HOME.
#include "app/platform/Autostart.h"
#include "support/TestSupport.h"

#include <QProcess>

namespace {

TEST(Autostart, WritesAValidEntryAndRemovesIt) {
    TempHome home; // XDG_CONFIG_HOME is its "config" folder
    const QString entry = home.file(QStringLiteral("config/autostart/tarvo.desktop"));
    ASSERT_EQ(Autostart::EntryPath(), entry);
    EXPECT_FALSE(Autostart::IsEnabled());

    ASSERT_TRUE(Autostart::Apply(true, QStringLiteral("/opt/My Apps/tarvo")));
    EXPECT_TRUE(Autostart::IsEnabled());
    const QByteArray text = ReadFileBytes(entry);
    EXPECT_TRUE(text.contains("\nExec=\"/opt/My Apps/tarvo\"\n")) << text.constData();
    EXPECT_TRUE(text.contains("\nX-GNOME-Autostart-enabled=true\n"));
    QProcess validate;
    validate.start(QStringLiteral("desktop-file-validate"), {entry});
    ASSERT_TRUE(validate.waitForFinished())
        << "desktop-file-validate (desktop-file-utils) is missing";
    EXPECT_EQ(validate.exitCode(), 0) << validate.readAll().constData();

    ASSERT_TRUE(Autostart::Apply(false, {}));
    EXPECT_FALSE(Autostart::IsEnabled());
    EXPECT_TRUE(Autostart::Apply(false, {})) << "removing an absent entry is no failure";
}

TEST(Autostart, ExecLineQuotesWhatTheFormatReserves) {
    const struct {
        const char* program;
        const char* exec;
    } cases[] = {
        {"/usr/bin/tarvo", "Exec=/usr/bin/tarvo\n"},
        {"/home/ann/50%/tarvo", "Exec=/home/ann/50%%/tarvo\n"},
        {"/home/a$b/t\"x", "Exec=\"/home/a\\\\$b/t\\\\\"x\"\n"},
        {"/home/back\\slash", "Exec=\"/home/back\\\\\\\\slash\"\n"},
    };
    for (const auto& c : cases) {
        EXPECT_TRUE(Autostart::EntryText(QString::fromUtf8(c.program)).contains(c.exec))
            << c.program;
    }
}

} // namespace
