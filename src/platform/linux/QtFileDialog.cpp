#include "platform/linux/QtFileDialog.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>

namespace tarvo {

std::optional<QString> QtFileDialog::getOpenFileName(const OpenRequest& request, QWidget* parent) {
    QFileDialog dialog(parent, request.title);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(request.fileMustExist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setNameFilters(nameFilters(request.filter));
    QString suffix = request.defaultExtension;
    if (suffix.startsWith(u'.'))
        suffix.remove(0, 1);
    dialog.setDefaultSuffix(suffix);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return QFileInfo(dialog.selectedFiles().constFirst()).absoluteFilePath();
}

QStringList QtFileDialog::nameFilters(const QString& filter) {
    // A name that lists its patterns in brackets already, as "Video (*.avi)" does, gets them once: Qt
    // takes the patterns from the last brackets and shows the whole text.
    static const QRegularExpression listed(QStringLiteral("\\s*\\(([^()]*)\\)$"));
    static const QRegularExpression separators(QStringLiteral("[\\s;]+"));
    const QStringList parts = filter.split(u'|');
    QStringList result;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        const QStringList given = parts.at(i + 1).split(separators, Qt::SkipEmptyParts);
        if (given.isEmpty())
            continue;
        QStringList patterns;
        for (const QString& p : given)
            patterns << (p == QStringLiteral("*.*") ? QStringLiteral("*") : p);
        QString name = parts.at(i).trimmed();
        const QRegularExpressionMatch brackets = listed.match(name);
        if (brackets.hasMatch() && brackets.captured(1).split(separators, Qt::SkipEmptyParts) == given)
            name.chop(brackets.capturedLength(0));
        result << QStringLiteral("%1 (%2)").arg(name, patterns.join(u' '));
    }
    return result;
}

} // namespace tarvo
