// Notifications on a private session bus that the test starts, with a small
// notification service of its own. (The real program without a service is
// run by tests/e2e/missed_alarms.sh.)
#include "app/platform/DBusNotifier.h"
#include "support/SessionBus.h"
#include "support/TestSupport.h"

#include <QProcess>
#include <QSignalSpy>
#include <QTest>

namespace {

// Records what it is asked to show; answers with ids 1, 2, ...
class FakeNotifications : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")
public:
    QList<QStringList> shown; // app, icon, heading, body, first action, urgency

public slots:
    uint Notify(const QString& app, uint, const QString& icon, const QString& heading,
                const QString& body, const QStringList& actions, const QVariantMap& hints, int) {
        shown.append({app, icon, heading, body, actions.value(0),
                      QString::number(hints.value("urgency").toInt())});
        return static_cast<uint>(shown.size());
    }

signals:
    void ActionInvoked(uint id, const QString& action);
};

TEST(Notifications, TheServiceGetsAlarmsAndRemindersAndItsActionOpensTheWindow) {
    TempHome home;
    QProcess daemon;
    const QString address = StartSessionBus(daemon, home.path());
    if (address.isEmpty()) {
        GTEST_SKIP() << "a private D-Bus session bus cannot start here (dbus-daemon)";
    }
    {
        DBusNotifier notifier(QDBusConnection::connectToBus(address, "client"));
        QSignalSpy open(&notifier, &DBusNotifier::openRequested);
        QDBusConnection service = QDBusConnection::connectToBus(address, "service");
        FakeNotifications fake;
        ASSERT_TRUE(service.registerObject(QString::fromLatin1(DBusNotifier::kPath), &fake,
                                           QDBusConnection::ExportAllContents));
        ASSERT_TRUE(service.registerService(QString::fromLatin1(DBusNotifier::kService)));
        notifier.Notify("ALARM!", {"Doctor", "Fish & <chips>"}, true);
        notifier.Notify("TODAY!", {"Birthday"}, false);
        ASSERT_TRUE(QTest::qWaitFor([&] { return fake.shown.size() == 2; }, 5000));
        const QString action = QString::fromLatin1(DBusNotifier::kOpenAction);
        EXPECT_EQ(fake.shown[0], (QStringList{"Tarvo", "tarvo", "ALARM!",
                                              "Doctor\nFish &amp; &lt;chips&gt;", action, "2"}));
        EXPECT_EQ(fake.shown[1].last(), "1") << "normal urgency for reminders";

        // Another program's notification, then ours (repeated until the reply
        // that tells the notifier its id has come; signals arrive in order).
        emit fake.ActionInvoked(99, action);
        for (int i = 0; i < 50 && open.isEmpty(); ++i) {
            emit fake.ActionInvoked(1, action);
            QTest::qWait(200);
        }
        EXPECT_EQ(open.count(), 1);
    }
    QDBusConnection::disconnectFromBus("service");
    QDBusConnection::disconnectFromBus("client");
    daemon.kill();
    daemon.waitForFinished();
}

} // namespace

#include "DBusNotifierTest.moc"
