#include "platform/linux/QtFileDialog.h"

#include <QFileDialog>
#include <QFileInfo>

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
    const QStringList parts = filter.split(u'|');
    QStringList result;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QStringList patterns;
        for (const QString& pattern : parts.at(i + 1).split(u';', Qt::SkipEmptyParts)) {
            const QString p = pattern.trimmed();
            if (!p.isEmpty())
                patterns << (p == QStringLiteral("*.*") ? QStringLiteral("*") : p);
        }
        if (!patterns.isEmpty())
            result << QStringLiteral("%1 (%2)").arg(parts.at(i).trimmed(), patterns.join(u' '));
    }
    return result;
}

} // namespace tarvo
