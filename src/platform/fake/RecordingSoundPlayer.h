#pragma once

#include "core/SoundPlayer.h"

#include <QStringList>

namespace tarvo {

// Records what would have been heard, and when, on a simulated clock that only sleeps move.
class RecordingSoundPlayer : public SoundPlayer {
public:
    void playSync(const QString& path) override {
        log_ << QStringLiteral("sync %1 @%2").arg(path, QString::number(elapsed_));
    }
    void playAsync(const QString& path) override {
        log_ << QStringLiteral("async %1 @%2").arg(path, QString::number(elapsed_));
    }
    void beep() override {
        ++beeps_;
        log_ << QStringLiteral("beep @%1").arg(elapsed_);
    }
    void sleep(int milliseconds) override { elapsed_ += milliseconds; }

    const QStringList& log() const { return log_; }
    int beeps() const { return beeps_; }
    long long elapsed() const { return elapsed_; }
    void clear() {
        log_.clear();
        beeps_ = 0;
        elapsed_ = 0;
    }

private:
    QStringList log_;
    int beeps_ = 0;
    long long elapsed_ = 0;
};

} // namespace tarvo
