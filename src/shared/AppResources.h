#pragma once

// The files built into the program (resources/resources.qrc: the icon, the
// default alarm sound). They are compiled into tarvo_core, a static library,
// so the linker keeps them only when something calls Init.
namespace AppResources {

// Registers the built-in files (":/tarvo.png", ":/alarm.wav"); safe to call
// more than once. Start-up calls it before the first window.
void Init();

inline constexpr const char* kAlarmWav = ":/alarm.wav";
inline constexpr const char* kIcon = ":/tarvo.png";

} // namespace AppResources
