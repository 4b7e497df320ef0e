#pragma once

#include "model/clsEvent.h"

#include <QString>

// What the event and task files can hold unchanged. Their formats write some
// values as they are, with no escaping: the event fields other than the
// description and the share list (paths, the e-mail address, the category
// and owner names, the ID code), and every task text. A "<" in such an event
// field, or a task marker in a task text, would end or split the value when
// the file is read again, and the user's next edit would not stick. The
// formats stay as they are; instead every way in (the editor, the options,
// the task window, the command line, imports) asks here first and refuses
// such a value with the message given.
namespace StorableText {

// "" when value can be kept in the as-is field called field (as the user
// sees it: "e-mail address", "sound file"); otherwise a one-line message
// naming the field.
QString AsIsProblem(const QString& field, const QString& value);

// "" when a task text reads back unchanged from the task list; otherwise a
// one-line message.
QString TaskProblem(const QString& task);

// Whether every as-is field of the event reads back unchanged.
bool EventStorable(const clsEvent& event);

} // namespace StorableText
