// The top-level window around the client area: title, menu bar, and the request to close.
#pragma once

#include <QMainWindow>
#include <functional>

#include "host/MENUBAR.h"

namespace quelmark {

class QtFrame final : public QMainWindow {
    Q_OBJECT

  public:
    QtFrame();

    // Told of a pick, by its key code, and of the window system's wish to close.
    std::function<void(std::int32_t code)> picked;
    std::function<void()> closeWanted;

    void ShowMenus(const MenuTree& menus);
    // Opens the first menu for the keyboard.
    void EnterMenus();

  protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    // Escape leaves an open menu and the bar at once, so that the next key reaches the scripts.
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    // As high as a whole number of screen pixels.
    void FitMenuBar();
    // Fills a menu's list with what its items are at this moment.
    void Fill(QMenu& menu, const std::vector<MenuEntry>& entries);
};

}  // namespace quelmark
