#include "platform/linux/CanberraSoundPlayer.h"

#include "core/ProgramInfo.h"
#include "platform/linux/CanberraLibrary.h"

#include <QFile>
#include <QFileInfo>

#include <canberra.h>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace tarvo {

namespace {

// A server that was not there may come later (a user session that starts its sound server late,
// a server that was restarted before we first connected); ask again after this long. Once connected,
// libcanberra reconnects by itself.
constexpr auto kRetryAfter = std::chrono::seconds(10);

// Shared between the waiting thread and libcanberra's callback thread and kept alive by both, so a
// callback that arrives after a time-out touches nothing that is gone.
struct Completion {
    std::mutex mutex;
    std::condition_variable done;
    bool finished = false;
};

void onFinished(ca_context*, std::uint32_t, int, void* userdata) {
    const std::unique_ptr<std::shared_ptr<Completion>> holder(
        static_cast<std::shared_ptr<Completion>*>(userdata));
    const std::shared_ptr<Completion>& completion = *holder;
    {
        const std::lock_guard lock(completion->mutex);
        completion->finished = true;
    }
    completion->done.notify_all();
}

// The file's absolute name for libcanberra, or nothing when it is not a readable regular file: a
// folder would fail only after opening, and a named pipe would block in the open itself.
QByteArray playableFile(const QString& path) {
    if (path.isEmpty())
        return {};
    const QFileInfo info(path);
    if (!info.isFile() || !info.isReadable())
        return {};
    return QFile::encodeName(info.absoluteFilePath());
}

} // namespace

CanberraSoundPlayer::CanberraSoundPlayer(QString fallbackBeep, int syncTimeoutMs)
    : fallbackBeep_(std::move(fallbackBeep))
    , syncTimeoutMs_(syncTimeoutMs) {}

CanberraSoundPlayer::~CanberraSoundPlayer() {
    // Ends any sound still playing; pending callbacks are called (and free what they hold) here.
    if (context_)
        CanberraLibrary::get()->context_destroy(context_);
}

ca_context* CanberraSoundPlayer::context() {
    if (context_)
        return context_;
    const auto now = std::chrono::steady_clock::now();
    if (failedAt_ && now - *failedAt_ < kRetryAfter)
        return nullptr;
    const CanberraLibrary* const ca = CanberraLibrary::get();
    if (!ca)
        return nullptr; // not installed: silence, for good
    ca_context* context = nullptr;
    if (ca->context_create(&context) == CA_SUCCESS) {
        ca->context_change_props(context, CA_PROP_APPLICATION_NAME, kProgramTitle, CA_PROP_APPLICATION_ID,
                                 "tarvo-micropause", nullptr);
        if (ca->context_open(context) == CA_SUCCESS) {
            failedAt_.reset();
            context_ = context;
            return context_;
        }
        ca->context_destroy(context);
    }
    failedAt_ = now;
    return nullptr;
}

void CanberraSoundPlayer::playSync(const QString& path) {
    const QByteArray file = playableFile(path);
    ca_context* context = file.isEmpty() ? nullptr : this->context();
    if (!context)
        return;
    const CanberraLibrary* const ca = CanberraLibrary::get();
    ca_proplist* props = nullptr;
    if (ca->proplist_create(&props) != CA_SUCCESS)
        return;
    ca->proplist_sets(props, CA_PROP_MEDIA_FILENAME, file.constData());
    ca->proplist_sets(props, CA_PROP_CANBERRA_CACHE_CONTROL, "never"); // the user may change the file
    const auto completion = std::make_shared<Completion>();
    auto holder = std::make_unique<std::shared_ptr<Completion>>(completion);
    const int result = ca->context_play_full(context, nextId_++, props, onFinished, holder.get());
    ca->proplist_destroy(props);
    if (result != CA_SUCCESS)
        return;       // libcanberra calls back only for a sound that started
    holder.release(); // now the callback's to free
    std::unique_lock lock(completion->mutex);
    completion->done.wait_for(lock, std::chrono::milliseconds(syncTimeoutMs_),
                              [&completion] { return completion->finished; });
}

void CanberraSoundPlayer::playAsync(const QString& path) {
    const QByteArray file = playableFile(path);
    ca_context* context = file.isEmpty() ? nullptr : this->context();
    if (!context)
        return;
    CanberraLibrary::get()->context_play(context, nextId_++, CA_PROP_MEDIA_FILENAME, file.constData(),
                                         CA_PROP_CANBERRA_CACHE_CONTROL, "never", nullptr);
}

void CanberraSoundPlayer::beep() {
    ca_context* context = this->context();
    if (!context)
        return;
    // Kept in the server's sample cache once played, so that the beeps of a pattern start on time
    // instead of each waiting for its file to be decoded and a stream to be set up.
    const int result = CanberraLibrary::get()->context_play(
        context, nextId_++, CA_PROP_EVENT_ID, "bell", CA_PROP_EVENT_DESCRIPTION, "Break warning",
        CA_PROP_CANBERRA_CACHE_CONTROL, "permanent", nullptr);
    if (result == CA_ERROR_NOTFOUND)
        playAsync(fallbackBeep_);
}

void CanberraSoundPlayer::sleep(int milliseconds) {
    if (milliseconds > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace tarvo
