#include "storage/clsDbXml.h"

#include "shared/AppPaths.h"
#include "shared/AtomicFile.h"
#include "shared/FileLimits.h"
#include "shared/OwnerId.h"
#include "shared/SaveFailures.h"
#include "shared/StatusNotices.h"
#include "shared/TextCodec.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/DamagedFile.h"
#include "storage/EventXmlCodec.h"
#include "storage/EventXmlTags.h"
#include "storage/SharedDatabases.h"
#include "storage/clsLayers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {
const QString kModule = QStringLiteral("clsDbXml");
// LoadDB has always logged under the old reader's labels.
const QString kLoadModule = QStringLiteral("clsDB2");
const QString kLoadProcedure = QStringLiteral("LoadAllEvents");
const QString kSingle = QStringLiteral("Single");

// Codes run from "000000" to "100000".
constexpr quint32 kIdCodeCount = 100001;

// Bytes per event block as written, for reserving the output buffer.
constexpr qsizetype kTypicalBlockSize = 900;

constexpr std::string_view kEndTag = "</EVENT>";

// Whether the file at path holds exactly bytes. Reading a file back is far
// cheaper than replacing it (a new file, a sync to the disk, a rename), and
// most saves, the day's pass at every start among them, change nothing.
bool HoldsBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (file.size() != bytes.size() || !file.open(QIODevice::ReadOnly)) {
        return false;
    }
    return file.readAll() == bytes;
}

// The first "</EVENT>" (exact case) at or after from, or -1. Looks for its
// "V", a byte that is rare elsewhere in the file, and checks around it.
qsizetype findEndTag(const QByteArray& bytes, qsizetype from) {
    if (bytes.size() - from < static_cast<qsizetype>(kEndTag.size())) {
        return -1;
    }
    const char* data = bytes.constData();
    const char* end = data + bytes.size();
    const char* p = data + from + 3; // "V" is the fourth byte of the tag
    while (p < end) {
        const auto* v =
            static_cast<const char*>(std::memchr(p, 'V', static_cast<std::size_t>(end - p)));
        if (v == nullptr) {
            return -1;
        }
        const char* start = v - 3;
        if (end - start >= 8 && std::memcmp(start, kEndTag.data(), kEndTag.size()) == 0) {
            return start - data;
        }
        p = v + 1;
    }
    return -1;
}
} // namespace

quint64 clsDbXml::s_codesGiven = 0;

clsDbXml::clsDbXml(cSHAREDSettings& settings, clsLayers* layers)
    : m_settings(settings), m_layers(layers) {}

clsDbXml::~clsDbXml() {
    clearList();
}

void clsDbXml::SetDBFilename(const QString& path) {
    m_fileName = path;
}

QString clsDbXml::CurrentOwner() const {
    return m_settings.sGet(QStringLiteral("Owner"), SettingValue(QStringLiteral("Not Set")))
        .toText();
}

qint64 clsDbXml::fileStamp(const QString& path) {
    if (path.isEmpty()) {
        return 0;
    }
    const QFileInfo info(path);
    if (!info.exists()) {
        return 0;
    }
    const qint64 ms = info.lastModified().toMSecsSinceEpoch();
    return ms == 0 ? 1 : ms; // 0 is kept for "absent"
}

bool clsDbXml::DatabaseChanged() const {
    if (m_mergedSet) {
        if (!m_listFile.isEmpty() && fileStamp(m_listFile) != m_listStamp) {
            return true;
        }
        for (qsizetype i = 0; i < m_sharedFiles.size(); ++i) {
            if (fileStamp(m_sharedFiles.at(i)) != m_sharedStamps.at(i)) {
                return true;
            }
        }
        return false;
    }
    if (m_fileName.isEmpty()) {
        return false;
    }
    return fileStamp(m_fileName) != m_stamp;
}

bool clsDbXml::indexCurrent() const {
    return m_indexValid && m_indexGeneration == s_codesGiven;
}

const QHash<QString, int>& clsDbXml::idIndex() const {
    if (!indexCurrent()) {
        m_idCounts.clear();
        m_idCounts.reserve(m_events.size());
        for (const EventPtr& event : m_events) {
            ++m_idCounts[event->IDCode];
        }
        m_indexValid = true;
        m_indexGeneration = s_codesGiven;
    }
    return m_idCounts;
}

void clsDbXml::AssignNewIDCode(clsEvent& event) {
    QString code = NewIDCode(); // brings this list's index up to date
    // This index stays true only when the event was not in this list under
    // its old code (then append counts it under the new one).
    const bool keepIndex = !m_idCounts.contains(event.IDCode);
    event.IDCode = std::move(code);
    ++s_codesGiven;
    if (keepIndex) {
        m_indexGeneration = s_codesGiven;
    } else {
        m_indexValid = false;
    }
}

void clsDbXml::append(const EventPtr& event) {
    m_events.append(event);
    if (indexCurrent()) {
        ++m_idCounts[event->IDCode];
    }
}

void clsDbXml::removeAt(qsizetype index) {
    if (indexCurrent()) {
        const auto it = m_idCounts.find(m_events.at(index)->IDCode);
        if (it != m_idCounts.end() && --it.value() <= 0) {
            m_idCounts.erase(it);
        }
    }
    m_events.removeAt(index);
}

void clsDbXml::clearList() {
    ++m_generation;
    m_events.clear();
    m_idCounts.clear();
    m_indexValid = true;
    m_indexGeneration = s_codesGiven;
}

void clsDbXml::adjustLoaded(clsEvent& event, const QString& owner) {
    if (event.Owner().trimmed().isEmpty() || OwnerId::Same(event.Owner(), kSingle)) {
        event.setOwner(owner);
    }
}

void clsDbXml::LoadDB(const QString& path, bool append) {
    m_stamp = fileStamp(path);
    m_fileName = path;
    if (!append) {
        m_damagedFile.clear();
        m_unsaved = false;
        clearList();
        m_mergedSet = false;
        m_sharedFiles.clear();
        m_sharedStamps.clear();
    }
    if (m_stamp == 0) {
        return; // absent: no records, nothing to report
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        Log().AddAction(file.errorString() + QStringLiteral(" (75)"), kLoadProcedure, kLoadModule);
        return;
    }
    const QByteArray bytes = file.readAll();
    file.close();

    const QString owner = CurrentOwner();
    const QString procedure = QStringLiteral("TransferXMLToObject");
    m_events.reserve(m_events.size() + bytes.size() / kTypicalBlockSize + 1);
    m_indexValid = false;
    EventXmlCodec::TextCache cache;

    // Blocks end at "</EVENT>" (exact case); a piece is an event only when
    // it holds "<EVENT>" in any case. Header and trailing text are ignored.
    // A file is damaged when it is not what a save writes: no header, text
    // outside the blocks and their wrappers, or a last block without its end
    // tag.
    bool damaged = false;
    qsizetype read = 0; // events taken from this file
    qsizetype from = 0;
    while (from < bytes.size()) {
        const qsizetype endTag = findEndTag(bytes, from);
        const qsizetype pieceEnd = endTag < 0 ? bytes.size() : endTag;
        const QByteArrayView piece(bytes.constData() + from, pieceEnd - from);
        const char* text = piece.data();
        if (from == 0) {
            // Without a header only a file of blanks is whole: it holds nothing.
            text = DamagedFile::AfterHeader(piece.data(), piece.data() + piece.size());
            damaged = text == nullptr &&
                      !DamagedFile::OnlyWrappers(piece.data(), piece.data() + piece.size());
            text = text == nullptr ? piece.data() : text;
        }
        from = endTag < 0 ? bytes.size() : endTag + static_cast<qsizetype>(kEndTag.size());
        const char* open =
            EventXmlCodec::detail::findTagNoCase(text, piece.data() + piece.size(), "<EVENT>");
        damaged = damaged ||
                  (open == nullptr ? !DamagedFile::OnlyWrappers(text, piece.data() + piece.size())
                                   : !DamagedFile::OnlyWrappers(text, open) || endTag < 0);
        if (open == nullptr) {
            continue;
        }
        if (read == FileLimits::kMaxEventsPerFile) {
            Log().AddAction(path +
                                QStringLiteral(" holds more events than can be read; the first ") +
                                QString::number(read) + QStringLiteral(" are read"),
                            kLoadProcedure, kLoadModule);
            damaged = true;
            break;
        }
        ++read;
        EventPtr event = EventXmlCodec::ParseBlock(piece, procedure, kModule, &cache);
        adjustLoaded(*event, owner);
        if (event->Deleted) {
            continue;
        }
        if (m_networked) {
            if (event->ShareWithSpecific && !event->NameInShared(owner)) {
                continue;
            }
            // An event without a layer name keeps its number rather than
            // naming a free layer "".
            if (m_layers != nullptr && !event->SharedLayerName.isEmpty()) {
                const int index = m_layers->LocalLayerFor(event->SharedLayerName);
                if (index >= 0 && index != event->Layer()) {
                    event->setLayer(static_cast<int16_t>(index));
                }
            }
        }
        this->append(event);
    }
    if (cache.UnloggedErrors() > 0) {
        Log().AddAction(QString::number(cache.UnloggedErrors()) +
                            QStringLiteral(" more conversion errors in ") + path +
                            QStringLiteral(" are not logged"),
                        kLoadProcedure, kLoadModule);
    }
    if (damaged && !append) {
        Log().AddAction(path + QStringLiteral(" is damaged; it is kept as it is until saved"),
                        kLoadProcedure, kLoadModule);
        m_damagedFile = path;
    }
}

void clsDbXml::SaveDB() {
    const QString procedure = QStringLiteral("SaveDB");
    if (m_mergedSet) {
        // The merged set holds other users' events; writing it would put
        // them into this user's shared file.
        Log().AddAction(QStringLiteral("Merged shared set is not saved"), procedure, kModule);
        return;
    }
    if (m_fileName.isEmpty()) {
        Log().AddAction(QStringLiteral("Bad file name or number (52)"), procedure, kModule);
        return;
    }
    // A file without its owner's write permission counts as read-only even
    // for a user whom the system would let write it; it is made writable
    // first. A save that still fails is told to the user once and the list
    // stays as it is, so the next save can write it.
    if (AtomicFile::IsReadOnly(m_fileName) && !AtomicFile::MakeWritable(m_fileName)) {
        Log().AddAction(QString::fromLatin1(kReadOnlyMessage), procedure, kModule);
        SaveFailures::Failed(m_fileName, SaveFailures::kReadOnly);
        m_unsaved = true;
    } else {
        QByteArray out;
        out.reserve(64 + m_events.size() * kTypicalBlockSize * 5 / 4);
        out.append(EventXmlCodec::kHeader);
        out.append(TextCodec::kLineEnd);
        for (const EventPtr& event : std::as_const(m_events)) {
            if (!event->Deleted) {
                EventXmlCodec::AppendBlock(out, *event);
                out.append(TextCodec::kLineEnd);
            }
        }
        AtomicFile::Result result;
        if (!HoldsBytes(m_fileName, out)) {
            result = keepDamagedCopy() ? AtomicFile::Write(m_fileName, out) : damagedCopyFailed();
        }
        m_unsaved = !result.ok();
        if (result.ok()) {
            SaveFailures::Saved(m_fileName);
        } else {
            if (result.status == AtomicFile::Status::AccessDenied) {
                Log().AddAction(QString::fromLatin1(kReadOnlyMessage), procedure, kModule);
            }
            Log().AddAction(result.description + QStringLiteral(" (") +
                                QString::number(result.errorNumber) + QLatin1Char(')'),
                            procedure, kModule);
            SaveFailures::Failed(m_fileName, result.description);
        }
    }
    if (m_publisher) {
        m_publisher(*this);
    }
    m_stamp = fileStamp(m_fileName);
}

bool clsDbXml::keepDamagedCopy() {
    if (m_damagedFile.isEmpty() || m_damagedFile != m_fileName || !QFileInfo::exists(m_fileName)) {
        return true;
    }
    if (DamagedFile::KeepCopy(m_fileName).isEmpty()) {
        return false;
    }
    m_damagedFile.clear();
    return true;
}

AtomicFile::Result clsDbXml::damagedCopyFailed() {
    AtomicFile::Result result;
    result.status = AtomicFile::Status::OtherError;
    result.errorNumber = 75;
    result.description =
        QStringLiteral("the file is damaged and no copy of it could be kept beside it");
    return result;
}

void clsDbXml::DeleteRecord(const QString& idCode) {
    const int32_t index = FindRecordIndex(idCode);
    if (index >= 0) {
        m_events.at(index)->Deleted = true;
    }
    SaveDB();
}

EventPtr clsDbXml::ReadEvent(const QString& idCode) const {
    const int32_t index = FindRecordIndex(idCode);
    return index >= 0 ? m_events.at(index) : EventPtr();
}

int32_t clsDbXml::FindRecordIndex(const QString& idCode) const {
    if (!idIndex().contains(idCode)) {
        return -1;
    }
    for (qsizetype i = 0; i < m_events.size(); ++i) {
        if (m_events.at(i)->IDCode == idCode) {
            return static_cast<int32_t>(i);
        }
    }
    return -1;
}

QString clsDbXml::RandomIDCode() const {
    // The process-wide generator is seeded once from the system's entropy.
    const quint32 r = QRandomGenerator::global()->bounded(kIdCodeCount);
    return QStringLiteral("%1").arg(r, 6, 10, QLatin1Char('0'));
}

QString clsDbXml::NewIDCode() const {
    const QHash<QString, int>& index = idIndex();
    // Random draws find a free code at once unless the list is nearly full;
    // then the codes are tried in order, so the search always ends.
    for (int attempt = 0; attempt < 1000; ++attempt) {
        QString code = RandomIDCode();
        if (!index.contains(code)) {
            return code;
        }
    }
    for (quint32 n = 0; n < kIdCodeCount; ++n) {
        QString code = QStringLiteral("%1").arg(n, 6, 10, QLatin1Char('0'));
        if (!index.contains(code)) {
            return code;
        }
    }
    Log().AddAction(QStringLiteral("No free ID code"), QStringLiteral("NewIDCode"), kModule);
    return {};
}

void clsDbXml::StoreRecord(const EventPtr& event, bool asNew) {
    if (!event) {
        return;
    }
    if (event->IDCode.isEmpty() || asNew) {
        AssignNewIDCode(*event);
    } else {
        const int32_t index = FindRecordIndex(event->IDCode);
        if (index >= 0) {
            removeAt(index);
        }
    }
    append(event);
}

bool clsDbXml::TakeRecord(const EventPtr& event) {
    const qsizetype index = m_events.indexOf(event);
    if (index < 0) {
        return false;
    }
    removeAt(index);
    return true;
}

void clsDbXml::InsertRecord(qsizetype index, const EventPtr& event) {
    m_events.insert(std::clamp<qsizetype>(index, 0, m_events.size()), event);
    if (m_indexValid) {
        ++m_idCounts[event->IDCode];
    }
}

void clsDbXml::SetAllToSingleUser() {
    for (const EventPtr& event : std::as_const(m_events)) {
        event->setOwner(kSingle);
    }
    SaveDB();
}

void clsDbXml::RenameOwner(const QString& oldOwner, const QString& newOwner) {
    for (const EventPtr& event : std::as_const(m_events)) {
        if (OwnerId::Same(event->Owner(), oldOwner)) {
            event->setOwner(newOwner);
        }
    }
    SaveDB();
}

void clsDbXml::LoadMultiple(const QString& listPath) {
    clearList();
    m_sharedFiles.clear();
    m_sharedStamps.clear();
    m_mergedSet = true;
    m_networked = true;

    const QString owner = CurrentOwner();
    const QString folder =
        m_settings.sGet(QStringLiteral("SharedDataPath"), SettingValue(QString())).toText();
    m_listFile = listPath;
    m_listStamp = listPath.isEmpty() ? 0 : fileStamp(listPath);
    QFile list(listPath);
    QString text;
    if (list.size() > FileLimits::kMaxUserListBytes) {
        refuseLarge(listPath, FileLimits::kMaxUserListBytes); // no users then
    } else if (list.exists() && list.open(QIODevice::ReadOnly)) {
        m_refused.remove(listPath);
        text = TextCodec::FromWindows1252(list.readAll());
    }
    for (const QString& line : text.split(QLatin1String(TextCodec::kLineEnd))) {
        const QString name = line.trimmed();
        if (name.isEmpty()) {
            continue;
        }
        Log().AddAction(QStringLiteral("Found shared database ") + line);
        if (!SharedDatabases::UsableListName(name)) {
            continue;
        }
        const QString file = AppPaths::JoinPath(folder, SharedDatabases::SharedFileName(name));
        if (OwnerId::Same(name, owner)) {
            Log().AddAction(QStringLiteral("Not loading - belongs to current user (") + owner +
                            QLatin1Char(')'));
            continue;
        }
        if (QFileInfo::exists(file)) {
            m_sharedFiles.append(file);
            m_sharedStamps.append(fileStamp(file));
            if (QFileInfo(file).size() > FileLimits::kMaxSharedFileBytes) {
                refuseLarge(file, FileLimits::kMaxSharedFileBytes);
                continue;
            }
            m_refused.remove(file);
            Log().AddAction(QStringLiteral("Loading from ") + file);
            LoadDB(file, true);
        } else {
            m_sharedFiles.append(file);
            m_sharedStamps.append(0);
            Log().AddAction(file + QStringLiteral(" not found. Setting null refresh date."));
        }
    }
    // An owner name that cannot name a shared file (a hand-edited settings
    // file) names none: the set is never written anyway.
    const QString own =
        OwnerId::IsPlainName(owner) ? SharedDatabases::SharedFileName(owner) : QString();
    Log().AddAction(QStringLiteral("Setting Database filename to ") + own);
    m_fileName = own.isEmpty() ? QString() : AppPaths::JoinPath(folder, own);
    m_stamp = fileStamp(m_fileName);
}

void clsDbXml::LoadMergedFile(const QString& path) {
    clearList();
    m_mergedSet = true;
    m_networked = true;
    m_listFile.clear();
    m_listStamp = 0;
    m_sharedFiles = QStringList{path};
    m_sharedStamps = QList<qint64>{fileStamp(path)};
    Log().AddAction(QStringLiteral("Loading shared events from ") + path);
    LoadDB(path, true);
}

void clsDbXml::refuseLarge(const QString& file, qint64 limit) {
    if (m_refused.contains(file)) {
        return; // told when it was first found too large
    }
    m_refused.insert(file);
    const QString text =
        QStringLiteral("Shared file ") + QDir::toNativeSeparators(file) +
        QStringLiteral(" is over ") +
        (limit >= 1024 * 1024 ? QString::number(limit / (1024 * 1024)) + QStringLiteral(" MB")
                              : QString::number(limit / 1024) + QStringLiteral(" KB")) +
        QStringLiteral(" and is not read");
    Log().AddAction(text, QStringLiteral("LoadMultiple"), kModule);
    StatusNotices::Post(text);
}
