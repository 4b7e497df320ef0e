#pragma once

#include "engine/IDesktopNotifier.h"
#include "engine/IReminderWindow.h"
#include "shared/IFileOpener.h"
#include "shared/ISoundPlayer.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

// A reminder window that only records what the engine did to it.
struct FakeReminderWindow : IReminderWindow {
    QString heading;
    QString caption;
    QStringList lines;
    bool soundFlag = false;
    QString soundFile;
    bool soundOnce = false;
    bool topmost = false;
    bool unloaded = false;

    void ClearList() override { lines.clear(); }
    void AddToList(const QString& text) override { lines << text; }
    void Heading(const QString& text) override { heading = caption = text; }
    void Caption(const QString& text) override { caption = text; }
    void setSoundFlag(bool on) override { soundFlag = on; }
    void setSoundFile(const QString& path) override { soundFile = path; }
    void setSoundOnce(bool once) override { soundOnce = once; }
    void MakeTopmost() override { topmost = true; }
    void Unload() override { unloaded = true; }
};

// Keeps every window it made, so tests can look at them after the pass.
struct FakeReminderWindowFactory : IReminderWindowFactory {
    std::vector<std::unique_ptr<FakeReminderWindow>> made;

    IReminderWindow* CreateReminderWindow() override {
        made.push_back(std::make_unique<FakeReminderWindow>());
        return made.back().get();
    }
    // The windows that were not unloaded, i.e. what the user would see.
    std::vector<FakeReminderWindow*> shown() const {
        std::vector<FakeReminderWindow*> out;
        for (const auto& w : made) {
            if (!w->unloaded) {
                out.push_back(w.get());
            }
        }
        return out;
    }
    FakeReminderWindow* withHeading(const QString& heading) const {
        for (const auto& w : made) {
            if (!w->unloaded && w->heading == heading) {
                return w.get();
            }
        }
        return nullptr;
    }
};

struct FakeFileOpener : IFileOpener {
    QStringList opened;
    bool accepts = true; // false: a desktop with no program for the file
    bool OpenDocument(const QString& path) override {
        opened << path;
        return accepts;
    }
};

struct FakeSoundPlayer : ISoundPlayer {
    bool available = true;
    QStringList played;
    int stops = 0;
    bool SoundAvailable() const override { return available; }
    void PlayWav(const QString& path) override { played << path; }
    void StopPlayingWAV() override { ++stops; }
};

struct FakeDesktopNotifier : IDesktopNotifier {
    struct Sent {
        QString heading;
        QStringList lines;
        bool critical;
        bool operator==(const Sent&) const = default;
    };
    QList<Sent> sent;
    void Notify(const QString& heading, const QStringList& lines, bool critical) override {
        sent.append({heading, lines, critical});
    }
};
