// Where the program keeps its files: the folder the environment names, else
// the program's own folder when settings lie beside it (a portable install),
// else the user's data folder.
#include "shared/AppPaths.h"
#include "support/TestSupport.h"

#include <QCoreApplication>
#include <QFile>

TEST(AppPaths, HomeIsTheNamedFolderElseAPortableInstallElseTheUsersDataFolder) {
    TempHome home;
    EXPECT_EQ(AppPaths::HomeFolderPath(), home.path());

    qunsetenv(AppPaths::kHomeVariable); // put back by TempHome
    const QByteArray dataHome = qgetenv("XDG_DATA_HOME");
    qputenv("XDG_DATA_HOME", QFile::encodeName(home.file("data")));
    const QString userFolder = AppPaths::HomeFolderPath();
    const QString beside =
        AppPaths::JoinPath(QCoreApplication::applicationDirPath(), QStringLiteral("Tvo.ini"));
    ASSERT_TRUE(WriteFileBytes(beside, ""));
    const QString portable = AppPaths::HomeFolderPath();
    QFile::remove(beside);
    dataHome.isNull() ? qunsetenv("XDG_DATA_HOME") : qputenv("XDG_DATA_HOME", dataHome);

    EXPECT_EQ(userFolder, home.file("data/Tarvo"));
    EXPECT_EQ(portable, QCoreApplication::applicationDirPath());
}
