#pragma once

#include "shared/ISoundPlayer.h"

#include <memory>

class QSoundEffect;

// Plays WAV files through Qt Multimedia, asynchronously, one at a time.
class QtSoundPlayer : public ISoundPlayer {
public:
    QtSoundPlayer();
    ~QtSoundPlayer() override;

    bool SoundAvailable() const override;
    void PlayWav(const QString& path) override;
    void StopPlayingWAV() override;

private:
    std::unique_ptr<QSoundEffect> m_effect;
};
