#pragma once

#include <QString>

#include <cstdint>

class cSHAREDSettings;

// The options that other parts read as a group: loads a subset of the
// settings file into fields and writes them back. Holds its fields only
// between its own LoadOptions and SaveOptions.
class clsOptions2 {
public:
    // settingsFile: "Tvo.ini". localEventFile: the local "Events.xml", whose
    // folder is the default shared folder.
    clsOptions2(cSHAREDSettings& settings, QString settingsFile, QString localEventFile = {});

    bool NoSounds() const { return m_noSounds; }
    void setNoSounds(bool v) { m_noSounds = v; }
    QString WavFile() const { return m_wavFile; }
    void setWavFile(const QString& v) { m_wavFile = v; }
    bool Networked() const { return m_networked; }
    void setNetworked(bool v) { m_networked = v; }
    int16_t DateStyle() const { return m_dateStyle; }
    void setDateStyle(int16_t v) { m_dateStyle = v; }
    QString Owner() const { return m_owner; }
    void setOwner(const QString& v) { m_owner = v; }
    // Full path of this user's shared event file.
    QString SharedDBFilename() const { return m_sharedDBFilename; }
    void setSharedDBFilename(const QString& v) { m_sharedDBFilename = v; }
    // The data folder.
    QString Datapath() const { return m_datapath; }
    void setDatapath(const QString& v) { m_datapath = v; }

    // Stores the fields (the shared folder as the folder part of
    // SharedDBFilename) and saves the settings file; false when the file
    // could not be written.
    bool SaveOptions();
    // Reads the settings file and fills the fields, with the defaults for
    // missing keys.
    void LoadOptions();

    // The folder part of a path, keeping its final separator ("" when the
    // path has none).
    static QString FolderPart(const QString& path);
    // path with a separator at its end ("/" unless the path already uses
    // "\"); a blank path stays as it is.
    static QString WithSeparator(const QString& path);
    // The home folder's "alarm.wav", the default alarm sound.
    static QString DefaultAlarmFile();

private:
    cSHAREDSettings& m_settings;
    QString m_settingsFile;
    QString m_localEventFile;
    bool m_noSounds = false;
    QString m_wavFile;
    bool m_networked = false;
    int16_t m_dateStyle = 1;
    QString m_owner;
    QString m_sharedDBFilename;
    QString m_datapath;
};
