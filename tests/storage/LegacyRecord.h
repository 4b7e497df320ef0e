#pragma once

// Builds records of the old fixed-length event files byte by byte, so the
// reader is checked against the layout itself and not against its own code.

#include "shared/DateValue.h"

#include <QByteArray>
#include <QtEndian>

#include <bit>
#include <cstdint>

struct LegacyRecord {
    bool deleted = false;
    double dueDate = 0;
    double dueTime = 0;
    QByteArray desc;
    bool recurring = false;
    int16_t daysWarning = 0;
    int16_t minutesWarning = 0;
    double reserved = 0;
    QByteArray idCode;
    int16_t recurrenceType = 0;
    bool alarmSet = false;
    int16_t weekDays = 0;
    int16_t dayOfMonth = 0;
    int16_t monthNumber = 0;
    int16_t daynumber = 0;
    int16_t dayOfWeek = 0;
    double startDate = 0;
    int16_t period = 0;
    int32_t daysLeft = 0;
    int16_t layer = 0;
    QByteArray owner;
    bool sharedEvent = false;
    double alarmTime = 0;
    bool execFile = false;
    QByteArray filename;
    QByteArray email;

    QByteArray bytes() const {
        QByteArray r(498, '\0');
        auto i16 = [&](int at, int16_t v) { qToLittleEndian<qint16>(v, r.data() + at); };
        auto i32 = [&](int at, int32_t v) { qToLittleEndian<qint32>(v, r.data() + at); };
        auto b16 = [&](int at, bool v) { i16(at, v ? -1 : 0); };
        auto dbl = [&](int at, double v) {
            qToLittleEndian<quint64>(std::bit_cast<quint64>(v), r.data() + at);
        };
        auto text = [&](int at, int size, const QByteArray& v) {
            QByteArray padded = v.left(size);
            padded.append(QByteArray(size - padded.size(), ' '));
            r.replace(at, size, padded);
        };
        b16(0, deleted);
        dbl(2, dueDate);
        dbl(10, dueTime);
        text(18, 200, desc);
        b16(218, recurring);
        i16(220, daysWarning);
        i16(222, minutesWarning);
        dbl(224, reserved);
        text(232, 12, idCode);
        i16(244, recurrenceType);
        b16(246, alarmSet);
        i16(248, weekDays);
        i16(250, dayOfMonth);
        i16(252, monthNumber);
        i16(254, daynumber);
        i16(256, dayOfWeek);
        dbl(258, startDate);
        i16(266, period);
        i32(268, daysLeft);
        i16(272, layer);
        text(274, 14, owner);
        b16(288, sharedEvent);
        dbl(290, alarmTime);
        b16(298, execFile);
        text(300, 150, filename);
        text(450, 48, email);
        return r;
    }
};
