#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstddef>
#include <cstdint>

// One reader's fuzz target: a body that runs on one input. The same source
// builds into a libFuzzer binary (TARVO_LIBFUZZER, see `make fuzz`) and into
// tests_fuzz_replay, which feeds it every checked-in input of
// tests/fuzz/corpus/<name>/ and tests/fuzz/regressions/<name>/.
namespace Fuzz {

using Body = void (*)(const QByteArray& input);

// Adds a body to the replay test's table (unused in a libFuzzer binary).
bool Register(const char* name, Body body);
Body Find(const QString& name);

// Called once before the first input: fixed clock, time zone and home folder.
void Prepare();
// An empty folder for this input (the same path each time, emptied first).
QString FreshFolder();
// Writes bytes to name inside the folder and returns the file's path.
QString Put(const QString& folder, const QString& name, const QByteArray& bytes);
QByteArray Get(const QString& path);
// The input cut at each line "%%" into at most max parts (the last part
// keeps the rest), so one input can hold several files.
QList<QByteArray> Parts(const QByteArray& input, int max);
// A broken property: aborts the fuzz run (so libFuzzer saves the input), or
// fails the replay test.
[[noreturn]] void Fail(const QString& what);
// Fails with what and the first line where two files differ, unless equal.
void Same(const QByteArray& first, const QByteArray& second, const QString& what);

} // namespace Fuzz

#ifdef TARVO_LIBFUZZER
#define TARVO_FUZZ_TARGET(name)                                                                    \
    static void FuzzBody(const QByteArray& input);                                                 \
    extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {            \
        Fuzz::Prepare();                                                                           \
        FuzzBody(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));   \
        return 0;                                                                                  \
    }                                                                                              \
    static void FuzzBody(const QByteArray& input)
#else
#define TARVO_FUZZ_TARGET(name)                                                                    \
    static void FuzzBody_##name(const QByteArray& input);                                          \
    [[maybe_unused]] static const bool kRegistered_##name =                                        \
        Fuzz::Register(#name, &FuzzBody_##name);                                                   \
    static void FuzzBody_##name(const QByteArray& input)
#endif
