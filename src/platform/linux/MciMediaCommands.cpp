#include "platform/linux/MciMediaCommands.h"

#include "platform/linux/MciCommand.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>

#include <algorithm>
#include <utility>

namespace tarvo {

namespace {

// How long a helper whose input has ended may take to take its videos down and end, before it is
// killed.
constexpr int kHelperEndsMs = 2000;

// The file of an open as the helper reads it: the bytes of its name, percent-encoded, so that no
// blank or line break in the name can split the line.
QString encodedFile(const QString& path) {
    return QString::fromLatin1(QFile::encodeName(path).toPercentEncoding("/"));
}

} // namespace

MciMediaCommands::MciMediaCommands(QString helperProgram, int helperKeptMs, int helperAnswersMs,
                                   QObject* parent)
    : QObject(parent)
    , helperProgram_(std::move(helperProgram)) {
    idle_.setSingleShot(true);
    idle_.setInterval(helperKeptMs);
    connect(&idle_, &QTimer::timeout, this, [this] { giveUpHelper(false); });
    answers_.setSingleShot(true);
    answers_.setInterval(helperAnswersMs);
    connect(&answers_, &QTimer::timeout, this, [this] { giveUpHelper(true); });
}

MciMediaCommands::~MciMediaCommands() {
    // The program ends: every helper still there is ended at once. A killed process is gone at once;
    // the wait only collects it, so that it leaves neither a zombie nor a warning of Qt's.
    for (QProcess* helper : findChildren<QProcess*>(Qt::FindDirectChildrenOnly)) {
        disconnect(helper, nullptr, this, nullptr);
        if (helper->state() != QProcess::NotRunning) {
            helper->kill();
            helper->waitForFinished(1000);
        }
    }
}

bool MciMediaCommands::helperRunning() const {
    return helper_ != nullptr && helper_->state() != QProcess::NotRunning;
}

int MciMediaCommands::send(const QString& command) {
    const auto parsed = parseMciCommand(command);
    if (const int* error = std::get_if<int>(&parsed))
        return *error;
    const MciCommand& c = std::get<MciCommand>(parsed);
    const QString alias = c.device.toCaseFolded();

    if (c.verb == MciCommand::Verb::Open) {
        if (devices_.contains(alias))
            return mcierr::DuplicateAlias;
        const QFileInfo file(c.file);
        if (!file.isFile() || !file.isReadable())
            return mcierr::FileNotFound;
        idle_.stop();
        if (helper_ == nullptr) {
            if (!QFileInfo(helperProgram_).isExecutable())
                return mcierr::CannotLoadDriver;
            startHelper();
            if (helper_ == nullptr)
                return mcierr::CannotLoadDriver;
        }
        const int device = nextDevice_++;
        tell(QStringLiteral("open %1 %2 ").arg(device).arg(c.parent) + encodedFile(file.absoluteFilePath()));
        devices_.insert(alias, device);
        return 0;
    }
    // A helper that was given up took its devices with it.
    const auto found = devices_.constFind(alias);
    if (found == devices_.cend())
        return mcierr::InvalidDeviceName;
    const int device = *found;
    switch (c.verb) {
    case MciCommand::Verb::Put:
        tell(QStringLiteral("place %1 %2 %3 %4 %5")
                 .arg(device)
                 .arg(c.window.x())
                 .arg(c.window.y())
                 .arg(c.window.width())
                 .arg(c.window.height()));
        break;
    case MciCommand::Verb::Play:
        tell(QStringLiteral("play %1 %2").arg(device).arg(c.repeat ? 1 : 0));
        break;
    case MciCommand::Verb::Pause:
        tell(QStringLiteral("pause %1").arg(device));
        break;
    case MciCommand::Verb::Resume:
        tell(QStringLiteral("resume %1").arg(device));
        break;
    case MciCommand::Verb::Stop:
        tell(QStringLiteral("stop %1").arg(device));
        break;
    case MciCommand::Verb::Close:
        tell(QStringLiteral("close %1").arg(device));
        devices_.remove(alias);
        if (devices_.isEmpty())
            idle_.start();
        break;
    case MciCommand::Verb::Open:
        break;
    }
    return 0;
}

void MciMediaCommands::startHelper() {
    auto* helper = new QProcess(this);
    helper_ = helper;
    unanswered_ = 0;
    helper->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(helper, &QProcess::readyReadStandardOutput, this, [this, helper] { answered(helper); });
    connect(helper, &QProcess::finished, this, [this, helper] {
        if (helper == helper_)
            giveUpHelper(false); // it died, with its videos
        helper->deleteLater();
    });
    connect(helper, &QProcess::errorOccurred, this, [this, helper](QProcess::ProcessError error) {
        if (error != QProcess::FailedToStart)
            return; // a crash ends in finished() as well
        if (helper == helper_)
            giveUpHelper(false);
        helper->deleteLater();
    });
    // Started, not waited for: the lines written meanwhile wait in the pipe until it reads them.
    helper->start(helperProgram_, QStringList());
}

void MciMediaCommands::tell(const QString& line) {
    helper_->write(line.toUtf8() + '\n');
    if (unanswered_++ == 0)
        answers_.start();
}

void MciMediaCommands::answered(QProcess* helper) {
    const qsizetype answers = helper->readAllStandardOutput().count('\n');
    if (helper != helper_)
        return; // one given up, ending
    unanswered_ = std::max(0, unanswered_ - static_cast<int>(answers));
    if (unanswered_ == 0)
        answers_.stop();
    else
        answers_.start(); // it is getting on: the time runs afresh for the rest
}

void MciMediaCommands::giveUpHelper(bool hung) {
    QProcess* helper = std::exchange(helper_, nullptr);
    devices_.clear();
    unanswered_ = 0;
    idle_.stop();
    answers_.stop();
    if (helper == nullptr || helper->state() == QProcess::NotRunning)
        return;
    if (hung) {
        qWarning("Tarvo Micropause: the video helper stopped answering; it is ended, and the next video "
                 "starts another");
        helper->kill();
        return;
    }
    // Its input ends: it takes its videos down and ends by itself. One that does not is killed.
    helper->closeWriteChannel();
    QTimer::singleShot(kHelperEndsMs, helper, [helper] { helper->kill(); });
}

} // namespace tarvo
