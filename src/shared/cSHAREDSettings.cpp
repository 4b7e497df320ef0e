#include "shared/cSHAREDSettings.h"

#include "shared/SaveFailures.h"
#include "shared/TextCodec.h"
#include "shared/UserDialogs.h"
#include "shared/cSHAREDShowError.h"
#include "shared/cSharedLogging.h"

#include "shared/FileLimits.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStorageInfo>

#include <algorithm>
#include <exception>

namespace {

const QString kModule = QStringLiteral("cSHAREDSettings");

const QString kReadOnlyMessage =
    QStringLiteral("Your settings file is read-only and I can't change it. Save cancelled.");

// An integer in the traditional print layout: the sign position (a blank for
// a non-negative number) and one blank after the digits.
QString PrintInteger(int32_t n) {
    return (n >= 0 ? QStringLiteral(" ") : QString()) + QString::number(n) + QLatin1Char(' ');
}

SettingsFileAccess& DefaultAccess() {
    static SettingsFileAccess access;
    return access;
}

} // namespace

AtomicFile::Result SettingsFileAccess::Write(const QString& path, const QByteArray& bytes) {
    return AtomicFile::Write(path, bytes);
}

bool SettingsFileAccess::MakeWritable(const QString& path) {
    return AtomicFile::MakeWritable(path);
}

QString DriveOfPath(const QString& path) {
    static const QRegularExpression letter(QStringLiteral("^([A-Za-z]):"));
    const QRegularExpressionMatch m = letter.match(path);
    if (m.hasMatch()) {
        return m.captured(1);
    }
    const QStorageInfo storage(QFileInfo(path).absolutePath());
    return storage.isValid() ? storage.rootPath() : QStringLiteral("/");
}

cSHAREDSettings::cSHAREDSettings(UserDialogs* dialogs)
    : m_dialogs(dialogs) {}

void cSHAREDSettings::setFileAccess(SettingsFileAccess* access) {
    m_access = access;
}

QString cSHAREDSettings::lookupKey(const QString& key) {
    QString k = key;
    k.remove(QLatin1Char(','));
    return k.toCaseFolded();
}

qsizetype cSHAREDSettings::find(const QString& key) const {
    return m_index.value(lookupKey(key), -1);
}

void cSHAREDSettings::removeAt(qsizetype index) {
    m_entries.removeAt(index);
    m_index.clear();
    for (qsizetype i = 0; i < m_entries.size(); ++i) {
        m_index.insert(lookupKey(m_entries.at(i).key), i);
    }
}

void cSHAREDSettings::StoreSetting(const QString& key, const SettingValue& v) {
    AddSetting(key, v);
}

void cSHAREDSettings::AddSetting(const QString& key, SettingValue value) {
    if (value.isBoolean()) {
        value = SettingValue(static_cast<int32_t>(value.toBool() ? -1 : 0));
    }
    QString name = key;
    name.remove(QLatin1Char(','));
    if (name.isEmpty()) {
        Log().AddAction(QStringLiteral("Invalid procedure call or argument (5)"),
                        QStringLiteral("AddSetting"), kModule);
        return;
    }
    const qsizetype at = find(name);
    if (at >= 0) {
        m_entries[at].value = value;
        return;
    }
    m_entries.append({name, value});
    m_index.insert(lookupKey(name), m_entries.size() - 1);
}

SettingValue cSHAREDSettings::RetrieveSetting(const QString& key, const SettingValue& def) const {
    const qsizetype at = find(key);
    if (at < 0) {
        return def;
    }
    const SettingValue& v = m_entries.at(at).value;
    if (v.isText()) {
        const QString t = v.toText().trimmed().toUpper();
        if (t == QLatin1String("TRUE")) {
            return SettingValue(true);
        }
        if (t == QLatin1String("FALSE")) {
            return SettingValue(false);
        }
    }
    return v;
}

bool cSHAREDSettings::IsSettingPresent(const QString& key) const {
    return find(key) >= 0;
}

void cSHAREDSettings::DeleteAllSettings() {
    m_entries.clear();
    m_index.clear();
}

void cSHAREDSettings::DeleteSettingByName(const QString& key) {
    const qsizetype at = find(key);
    if (at >= 0) {
        removeAt(at);
    }
}

QByteArray cSHAREDSettings::FileBytes() const {
    QString text;
    for (const Entry& e : m_entries) {
        text += e.key.toUpper() + QLatin1Char(',');
        text += e.value.isInteger() ? PrintInteger(e.value.toInt()) : e.value.toText();
        text += QLatin1String(TextCodec::kLineEnd);
    }
    return TextCodec::ToWindows1252(text);
}

bool cSHAREDSettings::SaveSettings(const QString& file) {
    try {
        SettingsFileAccess& access = m_access != nullptr ? *m_access : DefaultAccess();
        const QByteArray bytes = FileBytes();
        bool madeWritable = false;
        for (;;) {
            const AtomicFile::Result r = access.Write(file, bytes);
            switch (r.status) {
            case AtomicFile::Status::Saved:
                SaveFailures::Saved(file);
                return true;
            case AtomicFile::Status::AccessDenied:
                // One attempt at clearing the read-only state; a second refusal
                // means the folder or the system will not let us write.
                if (!madeWritable && access.MakeWritable(file)) {
                    madeWritable = true;
                    continue;
                }
                // Told once through the error report, with the file's name
                // and what to do; the settings stay in memory for the next
                // save.
                Log().AddAction(kReadOnlyMessage, QStringLiteral("SaveSettings"), kModule);
                SaveFailures::Failed(file, SaveFailures::kReadOnly);
                return false;
            case AtomicFile::Status::DiskFull: {
                const QString question =
                    QStringLiteral("You've run out of disk space on drive ") + DriveOfPath(file) +
                    QStringLiteral(":\rPlease clear some space and then click Retry, else click "
                                   "Cancel to abort.");
                Log().AddAction(r.description + QStringLiteral(" (61)"),
                                QStringLiteral("SaveSettings"), kModule);
                if (m_dialogs != nullptr && m_dialogs->AskRetryCancel(question)) {
                    continue;
                }
                return false;
            }
            case AtomicFile::Status::OtherError:
                Log().AddAction(QString::number(r.errorNumber) + QStringLiteral(" - ") +
                                    r.description,
                                QStringLiteral("SaveSettings"), kModule);
                SaveFailures::Failed(file, QString::number(r.errorNumber) + QStringLiteral(" - ") +
                                               r.description);
                return false;
            }
        }
    } catch (const std::exception& e) {
        Log().AddAction(QString::fromLocal8Bit(e.what()), QStringLiteral("SaveSettings"), kModule);
    }
    return false;
}

void cSHAREDSettings::LoadSettings(const QString& file) {
    DeleteAllSettings();
    QString line;
    try {
        if (!QFileInfo::exists(file)) {
            return;
        }
        QFile f(file);
        if (!f.open(QIODevice::ReadOnly)) {
            cSHAREDShowError::ShowErr(QStringLiteral("Error 75 in setting file. Line:  of ") +
                                      file);
            return;
        }
        // Lines end in CR LF; a bare LF from a hand edit on another system is
        // accepted too. Read a line at a time, so that an endless line (a
        // damaged file) is skipped rather than held in memory.
        while (!f.atEnd()) {
            QByteArray bytes = f.readLine(FileLimits::kMaxSettingsLineBytes);
            if (!bytes.endsWith('\n') && !f.atEnd()) {
                qint64 skipped = bytes.size();
                QByteArray rest;
                do {
                    rest = f.readLine(FileLimits::kMaxSettingsLineBytes);
                    skipped += rest.size();
                } while (!rest.endsWith('\n') && !f.atEnd());
                Log().AddAction(QStringLiteral("Skipped a line of ") + QString::number(skipped) +
                                    QStringLiteral(" bytes in ") + file,
                                QStringLiteral("LoadSettings"), kModule);
                continue;
            }
            if (bytes.endsWith('\n')) {
                bytes.chop(bytes.endsWith("\r\n") ? 2 : 1);
            }
            line = TextCodec::FromWindows1252(bytes);
            const qsizetype comma = line.indexOf(QLatin1Char(','));
            if (comma < 0) {
                continue;
            }
            const QString key = line.left(comma);
            if (key.trimmed().isEmpty()) {
                continue;
            }
            const QString raw = line.mid(comma + 1);
            const QString upper = raw.trimmed().toUpper();
            if (upper == QLatin1String("FALSE")) {
                AddSetting(key, SettingValue(static_cast<int32_t>(0)));
            } else if (upper == QLatin1String("TRUE")) {
                AddSetting(key, SettingValue(static_cast<int32_t>(-1)));
            } else {
                AddSetting(key, SettingValue(raw));
            }
        }
    } catch (const std::exception& e) {
        cSHAREDShowError::ShowErr(QStringLiteral("Error 5 in setting file. Line: ") + line +
                                  QStringLiteral(" of ") + file);
        Log().AddAction(QString::fromLocal8Bit(e.what()), QStringLiteral("LoadSettings"), kModule);
    }
}
