// A calendar server's answer to a sync: the multistatus XML and the
// calendar data inside it, both written by whoever runs the server. Every
// href comes back as a path, and every resource with data gives an event
// with an owner and a six-digit ID code, or none.
#include "fuzz/FuzzTarget.h"

#include "engine/caldav/CalDavMultistatus.h"
#include "engine/caldav/CalDavRead.h"
#include "shared/DateValue.h"

TARVO_FUZZ_TARGET(caldav_answer) {
    CalDavRead::Collection collection;
    collection.url = QUrl("http://127.0.0.1:5232/bob/tarvo/");
    const CalDavMultistatus::Answer answer = CalDavMultistatus::Parse(input, collection.url);
    collection.user = "bob";
    collection.today = DateSerial(2026, 11, 21);
    for (const CalDavMultistatus::Resource& r : answer.resources) {
        if (!r.href.startsWith(QLatin1Char('/'))) {
            Fuzz::Fail("an href that is no path: " + r.href);
        }
        if (r.data.isEmpty()) {
            continue;
        }
        const CalDavRead::ReadResource read = CalDavRead::EventOf(r.data, r.href, collection);
        if (read.event && !read.tarvo &&
            (read.event->Owner() != collection.user || read.event->IDCode.size() != 6)) {
            Fuzz::Fail("a plain event without the collection's owner or an ID code");
        }
    }
}
