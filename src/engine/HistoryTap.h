#pragma once

#include "engine/HistoryRecorder.h"

namespace tarvo {

class Clock;

// The engine's line to the history: it tells nobody until start-up connects a recorder, and knows the
// clock, so that the parts of the engine only say what happened and when it began.
class HistoryTap {
public:
    explicit HistoryTap(const Clock& clock)
        : clock_(clock) {}

    void connect(HistoryRecorder* recorder) { recorder_ = recorder; }

    // The moment of the clock that an event's `at` and its length are taken from.
    struct Moment {
        QDateTime local;
        std::int32_t tick = 0;
        bool isSet() const { return local.isValid(); }
    };
    Moment now() const;

    // An event that began at `start` and lasted until now.
    void record(HistoryKind kind, const Moment& start, QString outcome, QString details = {});
    // An event whose time and length are given.
    void record(HistoryKind kind, QDateTime at, QString outcome, std::int64_t seconds, QString details = {});

private:
    const Clock& clock_;
    HistoryRecorder* recorder_ = nullptr;
};

} // namespace tarvo
