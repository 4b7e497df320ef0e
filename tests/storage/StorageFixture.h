#pragma once

#include "model/clsEvent.h"
#include "shared/cSHAREDSettings.h"
#include "shared/cSharedLogging.h"
#include "storage/clsLayers.h"
#include "support/TestSupport.h"

#include <QByteArray>
#include <QString>

#include <gtest/gtest.h>

// A home folder, a settings store with an owner, and a layer table.
class StorageTest : public ::testing::Test {
protected:
    StorageTest() : layers(settings) {
        settings.sSet(QStringLiteral("Owner"), SettingValue(QStringLiteral("Ann")));
        // An empty buffer, so a test's own lines are not flushed away early.
        Log().WriteActionsToLog();
        m_logStart = Log().pendingActions().size();
    }

    static EventPtr MakeEvent(const QString& desc, const QString& owner = QStringLiteral("Ann")) {
        auto e = std::make_shared<clsEvent>();
        e->setDesc(desc);
        e->setOwner(owner);
        return e;
    }

    // Log actions buffered since the test began (the test logger has no file,
    // so nothing is flushed away).
    QStringList NewLogLines() const {
        const QStringList all = Log().pendingActions();
        return all.mid(all.size() >= m_logStart ? m_logStart : 0);
    }
    bool Logged(const QString& start) const {
        for (const QString& line : NewLogLines()) {
            if (line.startsWith(start)) {
                return true;
            }
        }
        return false;
    }

    static QByteArray Header() {
        return QByteArrayLiteral("<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\r\n");
    }

    qsizetype m_logStart = 0;
    TempHome home;
    cSHAREDSettings settings;
    clsLayers layers;
};
