#pragma once

#include "model/clsEvent.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/clsDbXml.h"
#include "storage/clsLayers.h"
#include "support/LogLines.h"
#include "support/TestSupport.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>

// A home folder, a settings store with an owner, and a layer table.
class StorageTest : public ::testing::Test {
protected:
    StorageTest() : layers(settings) {
        settings.sSet(QStringLiteral("Owner"), SettingValue(QStringLiteral("Ann")));
        m_logStart = LoggedTexts().size();
    }

    static EventPtr MakeEvent(const QString& desc, const QString& owner = QStringLiteral("Ann")) {
        auto e = std::make_shared<clsEvent>();
        e->setDesc(desc);
        e->setOwner(owner);
        return e;
    }

    // Saves events (as new records when asNew) into a fresh file at path and
    // returns its bytes.
    QByteArray SaveEvents(const QString& path, const QList<EventPtr>& events, bool asNew = false) {
        clsDbXml db(settings, &layers);
        db.SetDBFilename(path);
        for (const EventPtr& e : events) {
            db.StoreRecord(e, asNew);
        }
        db.SaveDB();
        return ReadFileBytes(path);
    }
    QList<EventPtr> LoadEvents(const QString& path) {
        clsDbXml db(settings, &layers);
        db.LoadDB(path);
        return db.Events();
    }

    // The log lines written since the test began.
    QStringList NewLogLines() const { return LoggedTexts().mid(m_logStart); }
    bool Logged(const QString& start) const {
        const QStringList lines = NewLogLines();
        return std::any_of(lines.begin(), lines.end(),
                           [&](const QString& line) { return line.startsWith(start); });
    }

    static QByteArray Header() {
        return QByteArrayLiteral("<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\r\n");
    }

    qsizetype m_logStart = 0;
    TempHome home;
    cSHAREDSettings settings;
    clsLayers layers;
};
