#pragma once

#include "engine/AppContext.h"
#include "platform/fake/FakeActivityMonitor.h"
#include "platform/fake/FakeClock.h"
#include "platform/fake/FakePresenceMonitor.h"
#include "platform/fake/ManualTimer.h"
#include "platform/fake/MemoryRegistryStore.h"
#include "platform/fake/RecordingMediaCommands.h"
#include "platform/fake/RecordingSoundPlayer.h"
#include "platform/fake/RecordingWindowSession.h"
#include "platform/fake/ScriptedFileDialog.h"
#include "platform/fake/ScriptedMessageBox.h"
#include "platform/fake/ScriptedRandom.h"

#include <functional>
#include <memory>

// The application context on fakes only: the store in memory, a clock and timers that move only when
// the test advances the timeline (from 09:00 on a Monday), made-up activity, recorded sounds and media
// commands, pre-answered message boxes and file dialogs, and chosen random numbers. A test of a real
// activity monitor makes it on the context's clock instead of the made-up activity.
struct FakeContext {
    using MonitorMaker = std::function<std::unique_ptr<tarvo::ActivityMonitor>(const tarvo::Clock&)>;

    explicit FakeContext(QString programFolder = QStringLiteral("/opt/tarvo"), const MonitorMaker& make = {})
        : madeMonitor(make ? make(clock) : nullptr)
        , ctx({store, clock, timeline, madeMonitor ? *madeMonitor : monitor, sound, messages, files, media,
               random, windowSession, presence},
              std::move(programFolder)) {}

    tarvo::MemoryRegistryStore store;
    tarvo::FakeClock clock{1000, QDateTime(QDate(2026, 11, 23), QTime(9, 0))};
    tarvo::ManualTimeline timeline{&clock};
    tarvo::FakeActivityMonitor monitor;
    tarvo::RecordingSoundPlayer sound;
    tarvo::ScriptedMessageBox messages;
    tarvo::ScriptedFileDialog files;
    tarvo::RecordingMediaCommands media;
    tarvo::ScriptedRandom random;
    tarvo::RecordingWindowSession windowSession;
    tarvo::FakePresenceMonitor presence;
    std::unique_ptr<tarvo::ActivityMonitor> madeMonitor;
    tarvo::AppContext ctx;
};
