#include "engine/CategoryRename.h"

#include "shared/cSHAREDSettings.h"
#include "storage/clsLayers.h"

CategoryRename::CategoryRename(clsLayers& layers, cSHAREDSettings& settings, QString settingsFile,
                               QStringList before)
    : m_layers(layers), m_settings(settings), m_settingsFile(std::move(settingsFile)),
      m_before(std::move(before)) {
    for (int i = 0; i < clsLayers::kCount; ++i) {
        m_keyWasSet.append(m_settings.IsSettingPresent(clsLayers::SettingKey(i)));
    }
}

void CategoryRename::Undo() {
    apply(m_before);
    for (int i = 0; i < clsLayers::kCount; ++i) {
        if (!m_keyWasSet.at(i)) {
            m_settings.DeleteSettingByName(clsLayers::SettingKey(i));
        }
    }
    save();
}

void CategoryRename::Redo() {
    apply(m_after);
    save();
}

bool CategoryRename::Finish() {
    m_after = Names(m_layers);
    return !Changed().isEmpty();
}

QList<int> CategoryRename::Changed() const {
    QList<int> out;
    for (int i = 0; i < clsLayers::kCount; ++i) {
        if (m_before.value(i) != m_after.value(i)) {
            out.append(i);
        }
    }
    return out;
}

QStringList CategoryRename::Names(const clsLayers& layers) {
    QStringList names;
    for (int i = 0; i < clsLayers::kCount; ++i) {
        names.append(layers.Layer(i));
    }
    return names;
}

void CategoryRename::apply(const QStringList& names) {
    for (int i = 0; i < clsLayers::kCount && i < names.size(); ++i) {
        m_layers.setLayer(i, names.at(i));
    }
    m_layers.SaveLayers();
}

void CategoryRename::save() {
    m_settings.SaveSettings(m_settingsFile);
}
