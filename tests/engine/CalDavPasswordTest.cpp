// The password lookup against a real secret store: a private session bus
// and the keyring daemon with an unlocked keyring, both started here.
#include "engine/CalDavPassword.h"
#include "engine/CalDavAccount.h"
#include "support/SessionBus.h"
#include "support/TestSupport.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <sys/prctl.h>

namespace {

// Both daemons stay up until this test program ends (and end with it): the
// secret store library keeps its bus connection for the life of the process
// and ends the process when the bus goes away.
QProcess* daemonForLife() {
    auto* process = new QProcess;
    process->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    return process;
}

QString readNow(const char* user) {
    CalDavAccount account{QUrl("http://127.0.0.1:5232/"), QString::fromLatin1(user)};
    QString error;
    const QString password = CalDavPassword::ReadNow(account, &error);
    return error.isEmpty() ? "password: " + password : error;
}

TEST(CalDavPassword, FromTheSecretStoreUnlessTheEnvironmentHasOne) {
    TempHome home;
    static QProcess* const bus = daemonForLife();
    const QString address = StartSessionBus(*bus, home.path());
    if (address.isEmpty()) {
        GTEST_SKIP() << "a private D-Bus session bus cannot start here (dbus-daemon)";
    }
    const QByteArray oldBus = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("DBUS_SESSION_BUS_ADDRESS", address.toUtf8());

    // No secret service on the bus: a clear line, at once.
    QElapsedTimer clock;
    clock.start();
    const QString none = readNow("ann");
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_TRUE(none.startsWith(QStringLiteral("The password for ann at http://127.0.0.1:5232/ "
                                               "cannot be read from the secret store: ")) &&
                none.size() > 90)
        << none.toStdString();
    qputenv(CalDavPassword::kEnvironmentVariable, "from-env");
    EXPECT_EQ(readNow("ann"), "password: from-env");
    qunsetenv(CalDavPassword::kEnvironmentVariable);

    static QProcess* const keyring = daemonForLife();
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("DBUS_SESSION_BUS_ADDRESS", address);
    env.insert("XDG_DATA_HOME", home.path());
    env.insert("XDG_RUNTIME_DIR", home.path());
    keyring->setProcessEnvironment(env);
    keyring->start("gnome-keyring-daemon", {"--foreground", "--components=secrets", "--unlock"});
    keyring->write("test-keyring\n"); // the new keyring's password
    keyring->closeWriteChannel();
    // Until the daemon serves, a read fails as above.
    const QString noneStored = QStringLiteral("No password is stored for ann at "
                                              "http://127.0.0.1:5232/; enter it in Options");
    const bool serving = QTest::qWaitFor([&] { return readNow("ann") == noneStored; }, 10000);
    if (serving) {
        EXPECT_EQ(CalDavPassword::WriteNow({QUrl("http://127.0.0.1:5232/"), "ann"}, "s3cret ä"),
                  QString());
        EXPECT_EQ(readNow("ann"), "password: s3cret ä");
        EXPECT_TRUE(readNow("bob").startsWith("No password is stored for bob"));
    }
    qputenv("DBUS_SESSION_BUS_ADDRESS", oldBus);
    if (!serving) {
        GTEST_SKIP() << "the keyring daemon (gnome-keyring-daemon) cannot start on a private bus: "
                     << keyring->readAllStandardError().toStdString();
    }
}

} // namespace
