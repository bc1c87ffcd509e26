#include "multimedia/MediaInstaller.h"

#include "multimedia/Medium.h"
#include "multimedia/MediumEncoder.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <thread>

namespace tarvo {

namespace {

QString cannotWrite(const QString& folder, const QString& file, const QString& reason) {
    return QStringLiteral("cannot write the exercise media into the folder \"%1\" (%2: %3)")
        .arg(QDir::toNativeSeparators(folder), file, reason);
}

struct Job {
    const Medium* medium = nullptr;
    std::unique_ptr<QSaveFile> file;
    QByteArray bytes;
    QString error;
};

// Renders the jobs on every core: each medium is independent of the others, and drawing and JPEG
// compression are most of the work.
void encodeAll(std::vector<Job>& jobs) {
    std::atomic<size_t> next{0};
    auto work = [&] {
        for (size_t i = next++; i < jobs.size(); i = next++) {
            try {
                jobs[i].bytes = encodeMedium(*jobs[i].medium);
            } catch (const std::exception& e) {
                jobs[i].error = QString::fromLocal8Bit(e.what());
            }
        }
    };
    // Qt draws into images, text included, on any thread.
    const size_t threads = std::min<size_t>(jobs.size(), std::max(1u, std::thread::hardware_concurrency()));
    const size_t helpers = threads > 0 ? threads - 1 : 0;
    std::vector<std::thread> running;
    for (size_t i = 0; i < helpers; ++i)
        running.emplace_back(work);
    work();
    for (std::thread& t : running)
        t.join();
}

} // namespace

InstallReport installMedia(const QString& folder, const std::vector<Medium>& media, bool replace) {
    InstallReport report;
    const QDir dir(folder);
    std::vector<Job> jobs;
    for (const Medium& medium : media) {
        const QString path = dir.filePath(medium.file);
        if (!replace && QFileInfo::exists(path)) {
            report.kept.append(medium.file);
            continue;
        }
        // Every file is opened before any is rendered: a folder that takes no files fails at once,
        // not after the work. A file that is never committed takes its temporary name with it.
        auto file = std::make_unique<QSaveFile>(path);
        file->setDirectWriteFallback(false);
        if (!file->open(QIODevice::WriteOnly)) {
            report.failure = cannotWrite(folder, medium.file, file->errorString());
            return report;
        }
        jobs.push_back({&medium, std::move(file), {}, {}});
    }
    encodeAll(jobs);
    for (Job& job : jobs) {
        if (!job.error.isEmpty()) {
            report.failure = cannotWrite(folder, job.medium->file, job.error);
            return report;
        }
        if (job.file->write(job.bytes) != job.bytes.size() || !job.file->commit()) {
            report.failure = cannotWrite(folder, job.medium->file, job.file->errorString());
            return report;
        }
        report.written.append(job.medium->file);
    }
    return report;
}

} // namespace tarvo
