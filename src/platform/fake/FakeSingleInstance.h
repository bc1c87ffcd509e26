#pragma once

#include "core/SingleInstance.h"

#include <vector>

namespace tarvo {

// A single-instance seam that a test scripts: whether another instance runs, whether a send reaches
// anyone. It records what was sent and lets the test deliver key codes to the listener, as a second
// start would.
class FakeSingleInstance : public SingleInstance {
public:
    struct Sent {
        std::int32_t handle;
        int keyCode;
        bool operator==(const Sent&) const = default;
    };

    explicit FakeSingleInstance(std::int32_t handle = 4242)
        : handle_(handle) {}

    bool previousInstance() override {
        ++previousInstanceCalls_;
        if (otherInstanceRunning_)
            return true;
        holdsLock_ = true;
        return false;
    }
    std::int32_t handle() const override { return handle_; }
    void listen(Listener& listener) override { listener_ = &listener; }
    std::int32_t runningHandle() const override { return runningHandle_; }
    Delivery sendKeyDown(std::int32_t handle, int keyCode) override {
        sent_.push_back({handle, keyCode});
        return delivery_;
    }
    void release() override {
        listener_ = nullptr;
        holdsLock_ = false;
        ++releaseCalls_;
    }

    // Another instance holds the lock, under this handle (0: one that cannot be told).
    void setOtherInstanceRunning(bool running, std::int32_t handle = 0) {
        otherInstanceRunning_ = running;
        runningHandle_ = running ? handle : 0;
    }
    // What sendKeyDown() reports.
    void setDelivery(Delivery delivery) { delivery_ = delivery; }

    // Hands a key code to the listener as a second start would; false when nothing listens.
    bool deliverKeyDown(int keyCode) {
        if (!listener_)
            return false;
        listener_->keyDown(keyCode); // it may release()
        return true;
    }

    bool isListening() const { return listener_ != nullptr; }
    bool holdsLock() const { return holdsLock_; }
    int previousInstanceCalls() const { return previousInstanceCalls_; }
    int releaseCalls() const { return releaseCalls_; }
    const std::vector<Sent>& sent() const { return sent_; }

private:
    std::int32_t handle_;
    bool otherInstanceRunning_ = false;
    std::int32_t runningHandle_ = 0;
    Delivery delivery_ = Delivery::Handled;
    bool holdsLock_ = false;
    int previousInstanceCalls_ = 0;
    int releaseCalls_ = 0;
    Listener* listener_ = nullptr;
    std::vector<Sent> sent_;
};

} // namespace tarvo
