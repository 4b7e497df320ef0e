// The old sounds table "EventWavs.ini": every event's sound looked up, one
// changed, one added and one deleted. A sound given is the sound read back.
#include "fuzz/FuzzTarget.h"

#include "storage/clsSounds.h"

TARVO_FUZZ_TARGET(sounds_table) {
    const QString folder = Fuzz::FreshFolder();
    Fuzz::Put(folder, "EventWavs.ini", input);
    clsSounds sounds(folder);
    sounds.Initialise();
    const QStringList lines = sounds.Lines();
    for (const QString& line : lines) {
        sounds.GetWavName(line.section(QLatin1Char(','), 0, 0));
    }
    const QString changed =
        lines.isEmpty() ? "000001" : lines.first().section(QLatin1Char(','), 0, 0);
    const QString wav = "/home/ann/ring.wav";
    for (const QString& id : {changed, QStringLiteral("123456")}) {
        if (id.trimmed().isEmpty()) {
            continue;
        }
        sounds.AddorChange(id, wav);
        clsSounds reread(folder);
        if (reread.GetWavName(id) != wav) {
            Fuzz::Fail("the sound of " + id + " reads back different");
        }
    }
    sounds.Delete("123456");
}
