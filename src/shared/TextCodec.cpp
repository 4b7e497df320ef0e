#include "shared/TextCodec.h"

#include <QStringDecoder>
#include <QStringEncoder>

namespace TextCodec {

QByteArray ToWindows1252(const QString& text) {
    QStringEncoder encoder("windows-1252", QStringConverter::Flag::Stateless);
    return encoder.encode(text);
}

QString FromWindows1252(const QByteArray& bytes) {
    QStringDecoder decoder("windows-1252", QStringConverter::Flag::Stateless);
    return decoder.decode(bytes);
}

} // namespace TextCodec
