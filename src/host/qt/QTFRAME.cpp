#include "host/qt/QTFRAME.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>

#include "host/qt/QTTEXT.h"

namespace quelmark {

void QtFrame::ShowMenus(const MenuTree& menus) {
    // Clearing the bar leaves its menus alive. They may be deleted only later: a menu's own script may be
    // what changes the bar.
    menuBar()->clear();
    for (QMenu* old : menuBar()->findChildren<QMenu*>(Qt::FindDirectChildrenOnly)) {
        old->deleteLater();
    }
    for (std::size_t position = 0; position < menus.size(); ++position) {
        const MenuColumn& column = menus[position];
        auto* menu = new QMenu(ToLabel(column.title), menuBar());
        menu->setEnabled(!column.greyed);
        menuBar()->addMenu(menu);
        menu->installEventFilter(this);
        Fill(*menu, column.entries);
        // Query functions decide about an item when its menu opens.
        QObject::connect(menu, &QMenu::aboutToShow, this, [this, menu, position] {
            Fill(*menu, MenuOpened(static_cast<std::int32_t>(position)));
        });
    }
    menuBar()->setVisible(!menus.empty());
}

void QtFrame::Fill(QMenu& menu, const std::vector<MenuEntry>& entries) {
    menu.clear();
    for (const MenuEntry& entry : entries) {
        if (entry.separator) {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(ToLabel(entry.text));
        action->setEnabled(!entry.greyed);
        action->setCheckable(entry.checked);
        action->setChecked(entry.checked);
        QObject::connect(action, &QAction::hovered, this, [entry] { MenuHighlight = entry.text; });
        QObject::connect(action, &QAction::triggered, this, [this, entry] { picked(entry.command); });
    }
}

bool QtFrame::eventFilter(QObject* watched, QEvent* event) {
    auto* menu = qobject_cast<QMenu*>(watched);
    if (menu == nullptr || event->type() != QEvent::KeyPress ||
        static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape) {
        return QMainWindow::eventFilter(watched, event);
    }
    menu->close();
    QApplication::sendEvent(menuBar(), event);
    return true;
}

void QtFrame::closeEvent(QCloseEvent* event) {
    event->ignore();  // the host closes the program
    closeWanted();
}

}  // namespace quelmark
