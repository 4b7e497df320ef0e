#include "app/platform/QtSoundPlayer.h"

#include <QAudioDevice>
#include <QFileInfo>
#include <QMediaDevices>
#include <QSoundEffect>
#include <QUrl>

QtSoundPlayer::QtSoundPlayer() = default;

QtSoundPlayer::~QtSoundPlayer() = default;

bool QtSoundPlayer::SoundAvailable() const {
    return !QMediaDevices::audioOutputs().isEmpty();
}

void QtSoundPlayer::PlayWav(const QString& path) {
    StopPlayingWAV();
    if (path.isEmpty() || !QFileInfo(path).isFile() || !SoundAvailable()) {
        return;
    }
    // A fresh effect per sound: switching the source of a playing one can
    // replay the old sound on some back ends.
    m_effect = std::make_unique<QSoundEffect>();
    m_effect->setSource(QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()));
    m_effect->play(); // plays once it has loaded; returns at once
}

void QtSoundPlayer::StopPlayingWAV() {
    if (m_effect) {
        m_effect->stop();
        m_effect.reset();
    }
}
