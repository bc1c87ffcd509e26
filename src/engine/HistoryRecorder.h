#pragma once

#include <QDateTime>
#include <QLatin1String>
#include <QString>

#include <cstdint>
#include <optional>

namespace tarvo {

// What the user's days were made of, told as it happens so that the user can look back on it: the
// breaks taken, skipped and put off, the machine asleep or the screen locked, breaks held while the
// person was busy, the program started and ended.
enum class HistoryKind { Startup, Shutdown, Micropause, ExercisePrompt, ExerciseBreak, Sleep, Lock, Hold };

// The kind as the history stores and exports it ("micropause", "exercise prompt", ...), and back.
QLatin1String historyKindName(HistoryKind kind);
std::optional<HistoryKind> historyKindFromName(QStringView name);

// The outcomes, as stored and exported.
namespace outcome {
inline constexpr QLatin1String Completed{"completed"};    // a micropause or exercise break to its end
inline constexpr QLatin1String EndedEarly{"ended early"}; // a micropause ended by Esc or a double click
inline constexpr QLatin1String Credited{"credited"};      // a natural pause of the user's own
inline constexpr QLatin1String Quit{"quit"};              // an exercise break the user stopped
inline constexpr QLatin1String ExerciseNow{"exercise now"};
inline constexpr QLatin1String Later{"later"};
inline constexpr QLatin1String Closed{"closed"}; // the prompt closed without an answer
inline constexpr QLatin1String Away{"away"};     // asleep or locked
// What became of the breaks a hold kept back: they came when it ended, or by the hold's limit; or a
// pause of the user's own (a natural pause, a long lock, an exercise break) took their place; or the
// program ended first.
inline constexpr QLatin1String CameAfter{"came after"};
inline constexpr QLatin1String CameAtLimit{"came at the limit"};
inline constexpr QLatin1String Covered{"covered"};
inline constexpr QLatin1String StillHeld{"still held"};
} // namespace outcome

// Where a micropause came from, as its details say.
namespace origin {
inline constexpr QLatin1String Scheduled{"scheduled"};
inline constexpr QLatin1String Menu{"menu"};
inline constexpr QLatin1String Natural{"natural"};
inline constexpr QLatin1String Prompt{"prompt"};
} // namespace origin

struct HistoryEvent {
    HistoryKind kind = HistoryKind::Startup;
    QDateTime at;             // when it began, local time
    QString outcome;          // one of outcome::, empty for start-up and shut-down
    std::int64_t seconds = 0; // how long it lasted; for a postponement, how long it puts the break off
    QString details;          // where it came from, how many exercises, ...
};

// Where the events go: the history subsystem implements it (and keeps nothing while recording is off);
// one call per event, never per timer tick, on the user-interface thread.
class HistoryRecorder {
public:
    virtual void record(const HistoryEvent& event) = 0;

protected:
    ~HistoryRecorder() = default;
};

} // namespace tarvo
