#pragma once

// The process-wide objects the dialogs need, on a throw-away home folder,
// with the scripted dialog seam.

#include "app/AppContext.h"
#include "shared/cSHAREDSettings.h"
#include "storage/SharedDatabases.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"
#include "support/FakeReminderWindows.h"
#include "support/ScriptedDialogs.h"
#include "support/TestSupport.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QWidget>

// A one-off event due on `due` ("YYYY-MM-DD").
inline EventPtr TestEvent(const QString& desc, const QString& due,
                          const QString& owner = QStringLiteral("Ann"), int layer = 1) {
    auto e = std::make_shared<clsEvent>();
    e->setDesc(desc);
    e->setDueDate(D(due));
    e->setOwner(owner);
    e->setLayer(static_cast<int16_t>(layer));
    return e;
}

struct DialogsFixture {
    DialogsFixture() {
        events.SetDBFilename(home.file(QStringLiteral("Events.xml")));
        expired.SetDBFilename(home.file(QStringLiteral("Expired.xml")));
    }

    TempHome home;
    ScriptedDialogs dialogs;
    cSHAREDSettings settings{&dialogs};
    clsLayers layers{settings};
    clsDbXml events{settings, &layers};
    clsDbXml expired{settings, &layers};
    SharedDatabases shared{settings, layers};
    FakeFileOpener opener;
    FakeSoundPlayer player;
    AppContext context{settings, home.file(QStringLiteral("Tvo.ini")),
                       layers,   events,
                       expired,  shared,
                       dialogs,  opener,
                       player};

    // A one-off event of owner's in a category, stored in db (not saved).
    EventPtr add(clsDbXml& db, const QString& desc, const QString& due,
                 const QString& owner = QStringLiteral("Ann"), int layer = 1) {
        EventPtr e = TestEvent(desc, due, owner, layer);
        db.StoreRecord(e);
        return e;
    }
};

// A child control by its name; fails the test when it is missing.
template <typename T> T* Control(const QWidget* window, const char* name) {
    T* w = window->findChild<T*>(QString::fromLatin1(name));
    EXPECT_NE(w, nullptr) << name;
    return w;
}
