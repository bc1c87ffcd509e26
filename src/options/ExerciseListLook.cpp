#include "options/ExerciseListLook.h"

#include <QPainter>
#include <QPixmap>

namespace tarvo {

QIcon doneIcon(bool done) {
    QIcon icon;
    for (const int scale : {1, 2}) {
        QPixmap pixmap(16 * scale, 16 * scale);
        pixmap.setDevicePixelRatio(scale);
        pixmap.fill(Qt::transparent);
        QPainter p(&pixmap);
        p.setRenderHint(QPainter::Antialiasing);
        p.setPen(QPen(QColor(0x60, 0x60, 0x60), 1));
        p.setBrush(Qt::white);
        p.drawRect(QRectF(2.5, 2.5, 11, 11));
        if (done) {
            p.setPen(QPen(QColor(0x1b, 0x8a, 0x3a), 2.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
            p.drawPolyline(QPolygonF({QPointF(4.5, 8.5), QPointF(7, 11), QPointF(12, 5)}));
        }
        p.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

TitleEditDelegate::TitleEditDelegate(std::function<void(bool)> editing, QObject* parent)
    : QStyledItemDelegate(parent)
    , editing_(std::move(editing)) {}

void TitleEditDelegate::forget() {
    editing_ = [](bool) {};
}

QWidget* TitleEditDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                         const QModelIndex& index) const {
    if (index.column() != 0)
        return nullptr;
    editing_(true);
    return QStyledItemDelegate::createEditor(parent, option, index);
}

void TitleEditDelegate::destroyEditor(QWidget* editor, const QModelIndex& index) const {
    QStyledItemDelegate::destroyEditor(editor, index);
    editing_(false);
}

} // namespace tarvo
