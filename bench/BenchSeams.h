#pragma once
// The engine's seams filled with stand-ins that do nothing, so a benchmark
// times the engine and the files, not windows, dialogs or programs opened.
#include "engine/IReminderWindow.h"
#include "shared/IFileOpener.h"
#include "shared/UserDialogs.h"

#include <memory>
#include <optional>
#include <vector>

namespace BenchSeams {

// A reminder window that only counts the lines listed in it.
struct CountingWindow : IReminderWindow {
    int lines = 0;
    void ClearList() override { lines = 0; }
    void AddToList(const QString&) override { ++lines; }
    void Heading(const QString&) override {}
    void Caption(const QString&) override {}
    void setSoundFlag(bool) override {}
    void setSoundFile(const QString&) override {}
    void setSoundOnce(bool) override {}
    void MakeTopmost() override {}
    void Unload() override {}
};

struct Windows : IReminderWindowFactory {
    std::vector<std::unique_ptr<CountingWindow>> made;
    IReminderWindow* CreateReminderWindow() override {
        made.push_back(std::make_unique<CountingWindow>());
        return made.back().get();
    }
};

struct NoOpener : IFileOpener {
    bool OpenDocument(const QString&) override { return true; }
};

// Shows nothing and answers every question with No or Cancel.
struct SilentDialogs : UserDialogs {
    void Message(const QString&, const QString&, Icon) override {}
    bool AskYesNo(const QString&, const QString&, bool) override { return false; }
    bool AskRetryCancel(const QString&, const QString&) override { return false; }
    std::optional<QString> InputBox(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
    std::optional<QString> ChooseOpenFile(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
    std::optional<QString> ChooseSaveFile(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
    std::optional<QString> ChooseFolder(const QString&, const QString&) override {
        return std::nullopt;
    }
    std::optional<DateValue> PickDate(const QString&, DateValue) override { return std::nullopt; }
};

} // namespace BenchSeams
