#pragma once

#include <QString>

namespace tarvo {

// What the tray menu's items and the tray icon's messages start. The program implements it.
class TrayActions {
public:
    virtual ~TrayActions() = default;

    virtual void LoadMeUp() = 0;                     // the options dialog: "&Options..." and a double click
    virtual void showStatus() = 0;                   // "&Status..."
    virtual void showAbout() = 0;                    // "&About..."
    virtual void micropauseNow() = 0;                // "&Micropause Now!"
    virtual void exerciseNow() = 0;                  // "&Exercise Now!"
    virtual void useScheme(const QString& name) = 0; // an item of the scheme list
    virtual void shutdown() = 0;                     // "Sh&utdown Tarvo", and key code 99 from another start
};

} // namespace tarvo
