#pragma once

#include <QIcon>
#include <QStyledItemDelegate>

#include <functional>

namespace tarvo {

// The small icon of an exercise in the list: a check box, empty (not done) or ticked (done), drawn
// at both scales so that it stays sharp at 200 %.
QIcon doneIcon(bool done);

// Lets the list edit an exercise's title (the first column) and nothing else, and tells when an edit
// begins (true) and ends (false).
class TitleEditDelegate : public QStyledItemDelegate {
public:
    TitleEditDelegate(std::function<void(bool)> editing, QObject* parent);

    // Tells nothing any more, for a listener that is going away.
    void forget();

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void destroyEditor(QWidget* editor, const QModelIndex& index) const override;

private:
    std::function<void(bool)> editing_;
};

} // namespace tarvo
