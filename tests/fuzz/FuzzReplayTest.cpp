// Every checked-in input of a fuzz target, run through the target's body in
// the normal build: the seeds, and the inputs that once broke a reader, so a
// fixed fault stays fixed.
#include "fuzz/FuzzTarget.h"

#include <QDir>
#include <QDirIterator>

#include <gtest/gtest.h>

#include <exception>

class FuzzReplay : public ::testing::TestWithParam<const char*> {};

TEST_P(FuzzReplay, EveryCheckedInInputPasses) {
    const QString name = QString::fromLatin1(GetParam());
    const Fuzz::Body body = Fuzz::Find(name);
    ASSERT_NE(body, nullptr) << "no target " << GetParam();
    int inputs = 0;
    for (const char* kind : {"corpus", "regressions"}) {
        const QString folder = QStringLiteral(TARVO_FUZZ_DIR "/%1/%2").arg(kind, name);
        QDirIterator it(folder, QDir::Files);
        while (it.hasNext()) {
            const QString path = it.next();
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
            try {
                body(file.readAll());
            } catch (const std::exception& e) {
                ADD_FAILURE() << path.toStdString() << ": " << e.what();
            }
            ++inputs;
        }
    }
    EXPECT_GT(inputs, 0) << "no seed inputs for " << GetParam();
}

INSTANTIATE_TEST_SUITE_P(Targets, FuzzReplay,
                         ::testing::Values("event_file", "shared_set", "legacy_dat",
                                           "settings_file", "task_list", "sounds_table",
                                           "ics_import", "caldav_answer"),
                         [](const auto& info) { return std::string(info.param); });
