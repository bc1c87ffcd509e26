#pragma once

#include "core/SoundPlayer.h"

#include <QString>

#include <chrono>
#include <cstdint>
#include <optional>

struct ca_context;

namespace tarvo {

// Sound through libcanberra, which serves PulseAudio and PipeWire alike. A file is played by path
// with a completion callback: the synchronous player blocks on that callback (it arrives about 20 ms
// after the last sample), bounded by a time-out so that a server that never answers cannot hang the
// program. The beep is the sound theme's "bell" event; where the theme has none, a short tone
// ("beep.wav" in the program folder) plays instead.
//
// libcanberra reads WAV and Ogg Vorbis. Anything it cannot read, a missing file, a folder or no
// sound server at all is silence: the call returns at once and nothing plays in its place.
class CanberraSoundPlayer : public SoundPlayer {
public:
    // The longest a synchronous sound holds the caller. A longer sound plays on after it.
    static constexpr int kSyncTimeoutMs = 60000;

    explicit CanberraSoundPlayer(QString fallbackBeep, int syncTimeoutMs = kSyncTimeoutMs);
    ~CanberraSoundPlayer() override;
    CanberraSoundPlayer(const CanberraSoundPlayer&) = delete;
    CanberraSoundPlayer& operator=(const CanberraSoundPlayer&) = delete;

    // A relative path is taken from the current folder.
    void playSync(const QString& path) override;
    void playAsync(const QString& path) override;
    void beep() override;
    void sleep(int milliseconds) override;

private:
    ca_context* context();

    QString fallbackBeep_;
    int syncTimeoutMs_;
    ca_context* context_ = nullptr;
    // When the last attempt to reach a sound server failed: until a while has passed, sounds are
    // silent without asking again, so that a beep pattern does not retry seven times in five seconds.
    std::optional<std::chrono::steady_clock::time_point> failedAt_;
    std::uint32_t nextId_ = 1;
};

} // namespace tarvo
