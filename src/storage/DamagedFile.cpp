#include "storage/DamagedFile.h"

#include "shared/DateValue.h"
#include "shared/cSHAREDShowError.h"
#include "shared/cSharedLogging.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstring>
#include <string_view>

namespace DamagedFile {

namespace {

const QString kModule = QStringLiteral("DamagedFile");

QByteArrayView trimmed(QByteArrayView bytes) {
    auto blank = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!bytes.isEmpty() && blank(bytes.front())) {
        bytes = bytes.sliced(1);
    }
    while (!bytes.isEmpty() && blank(bytes.back())) {
        bytes.chop(1);
    }
    return bytes;
}

} // namespace

QString CopyName(const QString& path) {
    const QString stem = path + QStringLiteral(".damaged-") +
                         ToQDateTime(Now()).toString(QStringLiteral("yyyyMMdd-HHmm"));
    QString name = stem;
    for (int n = 2; QFileInfo::exists(name); ++n) {
        name = stem + QLatin1Char('-') + QString::number(n);
    }
    return name;
}

QString KeepCopy(const QString& path) {
    QString copy = CopyName(path);
    if (!QFile::copy(path, copy)) {
        Log().AddAction(QStringLiteral("Unable to keep a copy of the damaged file ") +
                            QDir::toNativeSeparators(path) + QStringLiteral(" as ") +
                            QDir::toNativeSeparators(copy) + QStringLiteral("; it is not replaced"),
                        QStringLiteral("KeepCopy"), kModule);
        return {};
    }
    const QString text = QDir::toNativeSeparators(path) +
                         QStringLiteral(" could not be read as Tarvo writes it. What could be read "
                                        "is kept; the file as it was is saved as ") +
                         QDir::toNativeSeparators(copy) + QLatin1Char('.');
    Log().LogEvent(text);
    cSHAREDShowError::ShowErr(
        text, QStringLiteral("Compare the copy with your data; nothing else needs doing."));
    return copy;
}

bool OnlyWrappers(const char* from, const char* end) {
    constexpr std::string_view kOpen = "<TVO2>";
    constexpr std::string_view kClose = "</TVO2>";
    auto at = [&](std::string_view tag) {
        return end - from >= static_cast<std::ptrdiff_t>(tag.size()) &&
               std::memcmp(from, tag.data(), tag.size()) == 0;
    };
    while (from < end) {
        if (*from == ' ' || *from == '\t' || *from == '\r' || *from == '\n') {
            ++from;
        } else if (at(kOpen)) {
            from += kOpen.size();
        } else if (at(kClose)) {
            from += kClose.size();
        } else {
            return false;
        }
    }
    return true;
}

const char* AfterHeader(const char* from, const char* end) {
    while (from < end && (*from == ' ' || *from == '\t' || *from == '\r' || *from == '\n')) {
        ++from;
    }
    constexpr std::string_view kOpen = "<?xml";
    if (end - from < static_cast<std::ptrdiff_t>(kOpen.size()) ||
        std::memcmp(from, kOpen.data(), kOpen.size()) != 0) {
        return nullptr;
    }
    const char* close = std::search(from, end, "?>", "?>" + 2);
    return close == end ? nullptr : close + 2;
}

bool TaskFileDamaged(QByteArrayView bytes) {
    const QByteArrayView text = trimmed(bytes);
    return !text.isEmpty() && (!text.startsWith("<?xml") || !text.endsWith("</TVO2>"));
}

} // namespace DamagedFile
