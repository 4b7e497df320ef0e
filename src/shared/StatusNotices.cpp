#include "shared/StatusNotices.h"

#include <utility>

namespace StatusNotices {

namespace {
QStringList& pending() {
    static QStringList notices;
    return notices;
}
} // namespace

void Post(const QString& text) {
    pending().append(text);
}

QStringList Take() {
    return std::exchange(pending(), {});
}

} // namespace StatusNotices
