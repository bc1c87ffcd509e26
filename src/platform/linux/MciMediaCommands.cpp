#include "platform/linux/MciMediaCommands.h"

#include "platform/linux/MciCommand.h"

#include <QFileInfo>
#include <QProcess>

namespace tarvo {

MciMediaCommands::MciMediaCommands(QString helperProgram, int helperKeptMs, QObject* parent)
    : QObject(parent)
    , helperProgram_(std::move(helperProgram)) {
    idle_.setSingleShot(true);
    idle_.setInterval(helperKeptMs);
    connect(&idle_, &QTimer::timeout, this, &MciMediaCommands::endHelper);
}

MciMediaCommands::~MciMediaCommands() {
    endHelper();
}

bool MciMediaCommands::helperRunning() const {
    return helper_ && helper_->state() != QProcess::NotRunning;
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
        const int device = nextDevice_++;
        if (!tell(QStringLiteral("open %1 %2 %3").arg(device).arg(c.parent).arg(file.absoluteFilePath())))
            return mcierr::CannotLoadDriver;
        devices_.insert(alias, device);
        return 0;
    }
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

bool MciMediaCommands::tell(const QString& line) {
    idle_.stop();
    if (!helperRunning()) {
        // A helper that ended (or crashed) took its videos with it.
        helper_ = std::make_unique<QProcess>();
        helper_->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        helper_->setStandardOutputFile(QProcess::nullDevice());
        helper_->start(helperProgram_, QStringList());
        if (!helper_->waitForStarted(5000)) {
            helper_.reset();
            return false;
        }
    }
    const QByteArray bytes = line.toUtf8() + '\n';
    return helper_->write(bytes) == bytes.size();
}

void MciMediaCommands::endHelper() {
    if (!helper_)
        return;
    // The helper ends when its input ends; one that hangs is not waited for long.
    helper_->closeWriteChannel();
    if (!helper_->waitForFinished(2000)) {
        helper_->kill();
        helper_->waitForFinished(1000);
    }
    helper_.reset();
}

} // namespace tarvo
