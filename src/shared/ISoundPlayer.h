#pragma once

#include <QString>

// Plays WAV files asynchronously. One sound at a time: a new one stops the
// previous one. The Qt implementation uses Qt Multimedia; tests record calls.
class ISoundPlayer {
public:
    virtual ~ISoundPlayer() = default;
    // True when the system has an audio output device.
    virtual bool SoundAvailable() const = 0;
    // Stops any playing sound, then plays path when the file exists (a missing
    // file plays nothing, and no fallback sound is substituted).
    virtual void PlayWav(const QString& path) = 0;
    virtual void StopPlayingWAV() = 0;
};
