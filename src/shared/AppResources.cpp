#include "shared/AppResources.h"

#include <QtGlobal>

// Q_INIT_RESOURCE must be used outside any namespace.
static void registerResources() {
    Q_INIT_RESOURCE(resources);
}

namespace AppResources {

void Init() {
    static const bool done = [] {
        registerResources();
        return true;
    }();
    Q_UNUSED(done);
}

} // namespace AppResources
