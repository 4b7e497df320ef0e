#include "storage/clsLayers.h"

#include "shared/TextEqual.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"

namespace {
const QString kModule = QStringLiteral("clsLayers");

bool inRange(int index) {
    return index >= 0 && index < clsLayers::kCount;
}
} // namespace

clsLayers::clsLayers(cSHAREDSettings& settings) : m_settings(settings) {
    for (int i = 0; i < kCount; ++i) {
        m_names[i] = DefaultName(i);
    }
}

QString clsLayers::DefaultName(int index) {
    if (index == kShared) {
        return QStringLiteral("Shared");
    }
    if (index == kAllCategories) {
        return QStringLiteral("All Categories");
    }
    return QStringLiteral("Layer ") + QString::number(index);
}

QString clsLayers::SettingKey(int index) {
    return QStringLiteral("Layer") + QString::number(index);
}

QString clsLayers::Layer(int index) const {
    if (!inRange(index)) {
        Log().AddAction(QStringLiteral("Subscript out of range (9)"), QStringLiteral("Layer"),
                        kModule);
        return {};
    }
    return m_names[index];
}

void clsLayers::setLayer(int index, const QString& name) {
    if (!inRange(index)) {
        Log().AddAction(QStringLiteral("Subscript out of range (9)"), QStringLiteral("Layer"),
                        kModule);
        return;
    }
    m_names[index] = name;
}

void clsLayers::SaveLayers() {
    for (int i = 0; i < kCount; ++i) {
        m_settings.sSet(SettingKey(i), SettingValue(m_names[i]));
    }
}

void clsLayers::LoadLayers() {
    for (int i = 1; i < kAllCategories; ++i) {
        m_names[i] = m_settings.sGet(SettingKey(i), SettingValue(DefaultName(i))).toText();
    }
    m_names[kShared] = DefaultName(kShared);
    m_names[kAllCategories] = DefaultName(kAllCategories);
}

int clsLayers::SeekLayerIndex(const QString& name) {
    for (int i = 1; i < kCount; ++i) {
        if (TextEqual(m_names[i], name)) {
            return i;
        }
    }
    // Highest free slot first. A slot is free while its name is exactly
    // "Layer " + index, so "All Categories" at 20 never qualifies, and while
    // none of the user's own events sit in it: naming it would move them
    // under the other user's category.
    for (int i = kAllCategories; i >= 1; --i) {
        if (m_names[i] == QStringLiteral("Layer ") + QString::number(i) &&
            !(m_holdsOwnEvents && m_holdsOwnEvents(i))) {
            m_names[i] = name;
            SaveLayers();
            return i;
        }
    }
    return -1;
}

int clsLayers::LocalLayerFor(const QString& sharedLayerName) {
    if (TextEqual(sharedLayerName, m_names[kShared])) {
        return kShared;
    }
    return SeekLayerIndex(sharedLayerName);
}
