// The password lookup against a real secret store: a private session bus
// and the keyring daemon, both started here, with an unlocked keyring.
#include "engine/CalDavPassword.h"
#include "engine/CalDavAccount.h"
#include "support/TestSupport.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QElapsedTimer>
#include <QProcess>
#include <QTest>

#include <csignal>
#include <sys/prctl.h>

namespace {

CalDavAccount account(const char* user) {
    CalDavAccount a;
    a.server = QUrl(QStringLiteral("http://127.0.0.1:5232/"));
    a.user = QString::fromLatin1(user);
    return a;
}

// The bus and the keyring daemon stay up until this test program ends: the
// secret store library keeps its bus connection for the life of the process
// and ends the process when the bus goes away. They end with it.
QProcess* g_bus = nullptr;
QProcess* g_keyring = nullptr;

QProcess* daemonForLife() {
    auto* process = new QProcess;
    process->setChildProcessModifier([] { prctl(PR_SET_PDEATHSIG, SIGTERM); });
    return process;
}

QString readNow(const char* user) {
    QString error;
    const QString password = CalDavPassword::ReadNow(account(user), &error);
    return error.isEmpty() ? QStringLiteral("password: ") + password : error;
}

TEST(CalDavPassword, EnvironmentFirstThenTheSecretStore) {
    TempHome home;
    const QByteArray oldBus = qgetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv(CalDavPassword::kEnvironmentVariable, "from-env");
    EXPECT_EQ(readNow("ann"), QStringLiteral("password: from-env")) << "no bus needed";
    qunsetenv(CalDavPassword::kEnvironmentVariable);

    WriteFileBytes(
        home.file(QStringLiteral("bus.conf")),
        "<busconfig><type>session</type><listen>unix:dir=" + QFile::encodeName(home.path()) +
            "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
            "<allow receive_sender=\"*\"/>"
            "<allow own=\"*\"/></policy></busconfig>");
    g_bus = daemonForLife();
    QProcess& bus = *g_bus;
    bus.start(QStringLiteral("dbus-daemon"),
              {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
               QStringLiteral("--config-file=") + home.file(QStringLiteral("bus.conf"))});
    if (!bus.waitForStarted() || !bus.waitForReadyRead(5000)) {
        GTEST_SKIP() << "a private D-Bus session bus cannot start here (dbus-daemon)";
    }
    const QByteArray address = bus.readLine().trimmed();
    qputenv("DBUS_SESSION_BUS_ADDRESS", address);

    // No secret service on the bus: a clear line, at once.
    QElapsedTimer clock;
    clock.start();
    const QString none = readNow("ann");
    EXPECT_LT(clock.elapsed(), 5000) << none.toStdString();
    EXPECT_TRUE(none.startsWith(QStringLiteral("The password for ann at http://127.0.0.1:5232/ "
                                               "cannot be read from the secret store: ")))
        << none.toStdString();
    EXPECT_GT(none.size(), 90) << "the store's own reason follows";

    g_keyring = daemonForLife();
    QProcess& keyring = *g_keyring;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), QString::fromUtf8(address));
    env.insert(QStringLiteral("XDG_DATA_HOME"), home.path());
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.path());
    keyring.setProcessEnvironment(env);
    keyring.start(QStringLiteral("gnome-keyring-daemon"),
                  {QStringLiteral("--foreground"), QStringLiteral("--components=secrets"),
                   QStringLiteral("--unlock")});
    keyring.write("test-keyring\n");
    keyring.closeWriteChannel();
    QDBusConnection probe =
        QDBusConnection::connectToBus(QString::fromUtf8(address), QStringLiteral("probe"));
    const bool serving =
        keyring.waitForStarted() &&
        QTest::qWaitFor(
            [&] {
                return probe.interface()
                    ->isServiceRegistered(QStringLiteral("org.freedesktop.secrets"))
                    .value();
            },
            10000);
    if (serving) {
        EXPECT_EQ(readNow("ann"), QStringLiteral("No password is stored for ann at "
                                                 "http://127.0.0.1:5232/; enter it in Options"));
        EXPECT_EQ(CalDavPassword::WriteNow(account("ann"), QStringLiteral("s3cret ä")), QString());
        EXPECT_EQ(readNow("ann"), QStringLiteral("password: s3cret ä"));
        EXPECT_TRUE(readNow("bob").startsWith(QStringLiteral("No password is stored for bob")));
        qputenv(CalDavPassword::kEnvironmentVariable, "from-env");
        EXPECT_EQ(readNow("ann"), QStringLiteral("password: from-env"));
        qunsetenv(CalDavPassword::kEnvironmentVariable);
    }
    QDBusConnection::disconnectFromBus(QStringLiteral("probe"));
    qputenv("DBUS_SESSION_BUS_ADDRESS", oldBus);
    if (!serving) {
        GTEST_SKIP() << "the keyring daemon (gnome-keyring-daemon) cannot start on a private bus: "
                     << keyring.readAllStandardError().toStdString();
    }
}

} // namespace
