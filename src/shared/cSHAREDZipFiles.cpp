#include "shared/cSHAREDZipFiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <zip.h>

namespace {

// File names are compared as the file system does.
constexpr Qt::CaseSensitivity kPathCase =
#ifdef Q_OS_WIN
    Qt::CaseInsensitive;
#else
    Qt::CaseSensitive;
#endif

QString normalised(const QString& path) {
    return QDir::cleanPath(QFileInfo(path).absoluteFilePath());
}

QString zipErrorText(int code) {
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    QString text = QString::fromUtf8(zip_error_strerror(&error));
    zip_error_fini(&error);
    return text;
}

} // namespace

int cSHAREDZipFiles::indexOf(const QString& path) const {
    const QString wanted = normalised(path);
    for (int i = 0; i < m_files.size(); ++i) {
        if (normalised(m_files.at(i)).compare(wanted, kPathCase) == 0) {
            return i;
        }
    }
    return -1;
}

bool cSHAREDZipFiles::AddFile(const QString& path) {
    if (indexOf(path) >= 0) {
        m_lastMessage = QStringLiteral("File is already in Zip List");
        return false;
    }
    m_files.append(path);
    m_lastMessage.clear();
    return true;
}

bool cSHAREDZipFiles::MakeZipFile() {
    if (m_zipFileName.isEmpty()) {
        m_lastMessage = QStringLiteral("No Zip file name given");
        return false;
    }
    QStringList present;
    QStringList missing;
    for (const QString& path : std::as_const(m_files)) {
        (QFileInfo(path).isFile() ? present : missing).append(path);
    }
    if (present.isEmpty()) {
        m_lastMessage = QStringLiteral("No files to zip");
        return false;
    }

    int openError = 0;
    zip_t* archive = zip_open(QFile::encodeName(m_zipFileName).constData(),
                              ZIP_CREATE | ZIP_TRUNCATE, &openError);
    if (archive == nullptr) {
        m_lastMessage = QStringLiteral("Cannot create ") + m_zipFileName + QStringLiteral(": ") +
                        zipErrorText(openError);
        return false;
    }
    for (const QString& path : std::as_const(present)) {
        zip_source_t* source = zip_source_file(archive, QFile::encodeName(path).constData(), 0, -1);
        const QByteArray name = QFileInfo(path).fileName().toUtf8();
        if (source == nullptr ||
            zip_file_add(archive, name.constData(), source, ZIP_FL_ENC_UTF_8) < 0) {
            m_lastMessage = QStringLiteral("Cannot add ") + path + QStringLiteral(": ") +
                            QString::fromUtf8(zip_strerror(archive));
            zip_source_free(source);
            zip_discard(archive);
            return false;
        }
    }
    // The archive is written to a temporary file beside the target and only
    // then renamed over it.
    if (zip_close(archive) != 0) {
        m_lastMessage = QStringLiteral("Cannot write ") + m_zipFileName + QStringLiteral(": ") +
                        QString::fromUtf8(zip_strerror(archive));
        zip_discard(archive);
        return false;
    }
    m_lastMessage =
        QString::number(present.size()) + QStringLiteral(" files zipped to ") + m_zipFileName;
    if (!missing.isEmpty()) {
        m_lastMessage += QStringLiteral("; not found: ") + missing.join(QStringLiteral(", "));
    }
    return true;
}

QStringList cSHAREDZipFiles::ListEntries(const QString& zipPath) {
    QStringList names;
    int error = 0;
    zip_t* archive = zip_open(QFile::encodeName(zipPath).constData(), ZIP_RDONLY, &error);
    if (archive == nullptr) {
        return names;
    }
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        const char* name = zip_get_name(archive, static_cast<zip_uint64_t>(i), ZIP_FL_ENC_GUESS);
        if (name != nullptr) {
            names.append(QString::fromUtf8(name));
        }
    }
    zip_discard(archive);
    return names;
}
