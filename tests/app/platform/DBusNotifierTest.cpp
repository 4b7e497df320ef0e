// Notifications on a private session bus that the test starts, with a small
// notification service of its own on it.
#include "app/platform/DBusNotifier.h"
#include "support/LogLines.h"
#include "support/TestSupport.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

namespace {

// What a notification service is asked to show; answers with growing ids.
class FakeNotifications : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    struct Shown {
        QString app, icon, heading, body;
        QStringList actions;
        QVariantMap hints;
    };
    QList<Shown> shown;

public slots:
    uint Notify(const QString& app, uint, const QString& icon, const QString& heading,
                const QString& body, const QStringList& actions, const QVariantMap& hints, int) {
        shown.append({app, icon, heading, body, actions, hints});
        return static_cast<uint>(shown.size());
    }

signals:
    void ActionInvoked(uint id, const QString& action);
};

class Notifications : public ::testing::Test {
protected:
    void SetUp() override {
        WriteFileBytes(
            home.file(QStringLiteral("bus.conf")),
            "<busconfig><type>session</type><listen>unix:dir=" + QFile::encodeName(home.path()) +
                "</listen><policy context=\"default\"><allow send_destination=\"*\" "
                "eavesdrop=\"true\"/><allow eavesdrop=\"true\"/><allow own=\"*\"/>"
                "</policy></busconfig>");
        daemon.start(QStringLiteral("dbus-daemon"),
                     {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                      QStringLiteral("--config-file=") + home.file(QStringLiteral("bus.conf"))});
        if (!daemon.waitForStarted() || !daemon.waitForReadyRead(5000)) {
            GTEST_SKIP() << "a private D-Bus session bus cannot start here (dbus-daemon)";
        }
        address = QString::fromUtf8(daemon.readLine().trimmed());
        if (!connect(QStringLiteral("probe")).isConnected()) {
            GTEST_SKIP() << "the private D-Bus session bus does not take connections";
        }
        QDBusConnection::disconnectFromBus(QStringLiteral("probe"));
    }
    void TearDown() override {
        QDBusConnection::disconnectFromBus(QStringLiteral("service"));
        QDBusConnection::disconnectFromBus(QStringLiteral("client"));
        daemon.kill();
        daemon.waitForFinished();
    }
    QDBusConnection connect(const QString& name) {
        return QDBusConnection::connectToBus(address, name);
    }
    int unavailableLines() {
        return static_cast<int>(
            LoggedTexts().filter(QStringLiteral("Desktop notifications are unavailable")).size());
    }

    TempHome home;
    QProcess daemon;
    QString address;
};

TEST_F(Notifications, ReachTheServiceAndItsActionOpensTheWindow) {
    QDBusConnection service = connect(QStringLiteral("service"));
    FakeNotifications fake;
    ASSERT_TRUE(service.registerObject(QString::fromLatin1(DBusNotifier::kPath), &fake,
                                       QDBusConnection::ExportAllSlots |
                                           QDBusConnection::ExportAllSignals));
    ASSERT_TRUE(service.registerService(QString::fromLatin1(DBusNotifier::kService)));
    DBusNotifier notifier(connect(QStringLiteral("client")));
    QSignalSpy open(&notifier, &DBusNotifier::openRequested);

    notifier.Notify(QStringLiteral("ALARM!"),
                    {QStringLiteral("Doctor"), QStringLiteral("Fish & <chips>")}, true);
    notifier.Notify(QStringLiteral("TODAY!"), {QStringLiteral("Birthday")}, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return fake.shown.size() == 2; }, 5000));
    const FakeNotifications::Shown& alarm = fake.shown[0];
    EXPECT_EQ(alarm.app, QStringLiteral("Tarvo"));
    EXPECT_EQ(alarm.icon, QStringLiteral("tarvo"));
    EXPECT_EQ(alarm.heading, QStringLiteral("ALARM!"));
    EXPECT_EQ(alarm.body, QStringLiteral("Doctor\nFish &amp; &lt;chips&gt;"));
    EXPECT_EQ(alarm.actions.value(0), QString::fromLatin1(DBusNotifier::kOpenAction));
    EXPECT_EQ(alarm.hints.value(QStringLiteral("urgency")).toInt(), 2) << "critical";
    EXPECT_EQ(fake.shown[1].hints.value(QStringLiteral("urgency")).toInt(), 1);

    // Another program's notification, then ours (repeated until the reply
    // that tells the notifier its id has arrived; signals arrive in order).
    emit fake.ActionInvoked(99, QString::fromLatin1(DBusNotifier::kOpenAction));
    for (int i = 0; i < 50 && open.isEmpty(); ++i) {
        emit fake.ActionInvoked(1, QString::fromLatin1(DBusNotifier::kOpenAction));
        QTest::qWait(200);
    }
    EXPECT_EQ(open.count(), 1);
    EXPECT_EQ(unavailableLines(), 0);
}

TEST_F(Notifications, WithoutAServiceOrABusTheLogSaysSoOnce) {
    const int before = unavailableLines();
    DBusNotifier noService(connect(QStringLiteral("client")));
    noService.Notify(QStringLiteral("ALARM!"), {QStringLiteral("Doctor")}, true);
    noService.Notify(QStringLiteral("ALARM!"), {QStringLiteral("Dentist")}, true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return unavailableLines() == before + 1; }, 5000));
    QTest::qWait(200);
    EXPECT_EQ(unavailableLines(), before + 1);

    DBusNotifier noBus(QDBusConnection::connectToBus(
        QStringLiteral("unix:path=") + home.file(QStringLiteral("none")), QStringLiteral("dead")));
    noBus.Notify(QStringLiteral("ALARM!"), {QStringLiteral("Doctor")}, true);
    noBus.Notify(QStringLiteral("ALARM!"), {QStringLiteral("Doctor")}, true);
    EXPECT_EQ(unavailableLines(), before + 2);
    QDBusConnection::disconnectFromBus(QStringLiteral("dead"));
}

} // namespace

#include "DBusNotifierTest.moc"
