#pragma once

#include "core/TrayIcon.h"

#include <QAction>
#include <QIcon>
#include <QMenu>
#include <QStringList>

#include <vector>

namespace tarvo {

// A notification-area icon that only records what the program does with it. A test delivers mouse
// messages as the icon would, and can act while a menu is "up" (onPopUp runs inside popUp, the way
// events arrive while a real menu pumps messages).
class FakeTrayIcon : public TrayIcon {
public:
    struct PopUp {
        QPoint position;
        // The menu's items at the moment it went up: object names, captions and the default item.
        QStringList itemNames;
        QStringList captions;
        QString defaultItem;
    };

    void add(const QIcon&, const QString& tip, Listener& listener) override {
        tip_ = tip;
        listener_ = &listener;
        added_ = true;
    }
    void remove() override { added_ = false; }
    void popUp(QMenu& menu, const QPoint& position) override {
        PopUp record{position, {}, {}, {}};
        for (const QAction* action : menu.actions()) {
            record.itemNames << action->objectName();
            record.captions << action->text();
        }
        if (menu.defaultAction() != nullptr)
            record.defaultItem = menu.defaultAction()->objectName();
        popUps_.push_back(record);
        if (onPopUp)
            onPopUp(menu);
    }
    bool isEmbedded() const override { return added_; }

    // Delivers a mouse message as a click on the icon would (nothing happens before add).
    void deliver(int message) {
        if (added_)
            listener_->trayMessage(message);
    }

    // Runs while the menu is "up".
    std::function<void(QMenu& menu)> onPopUp;

    bool added() const { return added_; }
    const QString& tip() const { return tip_; }
    const std::vector<PopUp>& popUps() const { return popUps_; }

private:
    Listener* listener_ = nullptr;
    QString tip_;
    std::vector<PopUp> popUps_;
    bool added_ = false;
};

} // namespace tarvo
