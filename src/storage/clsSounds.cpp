#include "storage/clsSounds.h"

#include "shared/AppPaths.h"
#include "shared/AppResources.h"
#include "shared/AtomicFile.h"
#include "shared/TextCodec.h"
#include "shared/TextEqual.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"

#include <QFile>
#include <QFileInfo>

namespace {
const QString kModule = QStringLiteral("clsSounds");
const QString kLineEnd = QString::fromLatin1(TextCodec::kLineEnd);

// The ID code of a table line: the part before its first comma; none for a
// line without a comma.
bool lineIdMatches(const QString& line, const QString& idCode) {
    const qsizetype comma = line.indexOf(QLatin1Char(','));
    return comma >= 0 && TextEqual(line.left(comma), idCode);
}
} // namespace

clsSounds::clsSounds(QString dataPath) : m_dataPath(std::move(dataPath)) {}

QString clsSounds::EventWavsFilename() const {
    return AppPaths::JoinPath(m_dataPath, QStringLiteral("EventWavs.ini"));
}

void clsSounds::Initialise() {
    m_lines.clear();
    QFile file(EventWavsFilename());
    if (file.exists()) {
        if (file.open(QIODevice::ReadOnly)) {
            m_lines = TextCodec::FromWindows1252(file.readAll()).split(kLineEnd);
        } else {
            Log().AddAction(file.errorString() + QStringLiteral(": ") + file.fileName(),
                            QStringLiteral("Initialise"), kModule);
        }
    }
    m_loaded = true;
}

void clsSounds::ensureLoaded() {
    if (!m_loaded) {
        Initialise();
    }
}

int clsSounds::IDCodePresent(const QString& idCode) {
    ensureLoaded();
    for (qsizetype i = 0; i < m_lines.size(); ++i) {
        if (lineIdMatches(m_lines.at(i), idCode)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

QString clsSounds::GetWavName(const QString& idCode) {
    const int i = IDCodePresent(idCode);
    return i < 0 ? QString() : m_lines.at(i).section(QLatin1Char(','), 1, 1);
}

void clsSounds::AddorChange(const QString& idCode, const QString& soundPath) {
    const QString line = idCode + QLatin1Char(',') + soundPath;
    const int i = IDCodePresent(idCode);
    if (i >= 0) {
        m_lines[i] = line;
    } else {
        // A new line goes at the end, and the file keeps ending in CR LF
        // (an empty last entry in the list).
        if (!m_lines.isEmpty() && m_lines.last().isEmpty()) {
            m_lines.last() = line;
        } else {
            m_lines.append(line);
        }
        m_lines.append(QString());
    }
    if (!save()) {
        Log().AddAction(QStringLiteral("Unable to write ") + EventWavsFilename(),
                        QStringLiteral("AddorChange"), kModule);
    }
}

void clsSounds::Delete(const QString& idCode) {
    const int i = IDCodePresent(idCode);
    if (i < 0) {
        return;
    }
    m_lines.removeAt(i);
    if (!save()) {
        Log().AddAction(QStringLiteral("Unable to write ") + EventWavsFilename(),
                        QStringLiteral("Delete"), kModule);
    }
}

bool clsSounds::save() {
    return AtomicFile::Write(EventWavsFilename(), TextCodec::ToWindows1252(m_lines.join(kLineEnd)))
        .ok();
}

bool WriteDefaultAlarmWav(const QString& path) {
    if (QFileInfo::exists(path)) {
        return true;
    }
    AppResources::Init();
    QFile source(QString::fromLatin1(AppResources::kAlarmWav));
    if (!source.open(QIODevice::ReadOnly)) {
        Log().AddAction(source.errorString() + QStringLiteral(": ") + source.fileName(),
                        QStringLiteral("WriteDefaultAlarmWav"), kModule);
        return false;
    }
    const AtomicFile::Result result = AtomicFile::Write(path, source.readAll());
    if (!result.ok()) {
        Log().AddAction(result.description + QStringLiteral(": ") + path,
                        QStringLiteral("WriteDefaultAlarmWav"), kModule);
    }
    return result.ok();
}

QString DefaultWavFile(cSHAREDSettings& settings) {
    const QString homeWav = AppPaths::JoinPath(AppPaths::HomeFolder(), QStringLiteral("alarm.wav"));
    QString wav = settings.sGet(QStringLiteral("WavFile"), SettingValue(homeWav)).toText();
    if (!QFileInfo::exists(wav)) {
        wav = homeWav;
        settings.sSet(QStringLiteral("WavFile"), SettingValue(wav));
        WriteDefaultAlarmWav(homeWav);
    }
    return wav;
}
