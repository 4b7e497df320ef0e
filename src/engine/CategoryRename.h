#pragma once

#include <QString>
#include <QStringList>

class cSHAREDSettings;
class clsLayers;

// A rename in the category editor, recorded so that it can be undone and
// redone: all 21 layer names before and after. Applying either side writes
// the names into the layer table and saves the settings file, as the
// editor's Accept does; undo also drops the layer keys the settings did not
// hold before, so the file comes back as it was.
class CategoryRename {
public:
    CategoryRename(clsLayers& layers, cSHAREDSettings& settings, QString settingsFile,
                   QStringList before);
    // After the editor stored its names: notes them. False when no name changed.
    bool Finish();

    // The indexes whose name changed.
    QList<int> Changed() const;
    QString OldName(int index) const { return m_before.value(index); }
    QString NewName(int index) const { return m_after.value(index); }

    void Undo();
    void Redo();

    // The 21 names of the table as they are now.
    static QStringList Names(const clsLayers& layers);

private:
    void apply(const QStringList& names);
    void save();

    clsLayers& m_layers;
    cSHAREDSettings& m_settings;
    QString m_settingsFile;
    QStringList m_before;
    QStringList m_after;
    QList<bool> m_keyWasSet; // by layer index
};
