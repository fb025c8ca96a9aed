#include "host/qt/QTFRAME.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QStyleOption>
#include <algorithm>
#include <cmath>

#include "host/qt/QTTEXT.h"

namespace quelmark {
namespace {

// The library shows neither the title that the keyboard is at nor, at most scales, one even lower edge.
class MenuBar final : public QMenuBar {
  public:
    using QMenuBar::QMenuBar;

  protected:
    void initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const override {
        QMenuBar::initStyleOption(option, action);
        if (hasFocus() && action == activeAction()) {
            option->state |= QStyle::State_Sunken;
        }
    }
    void paintEvent(QPaintEvent* event) override {
        constexpr int DARKER_PERCENT = 112;
        QMenuBar::paintEvent(event);
        QPainter painter(this);
        const QColor plain = palette().color(QPalette::Window);
        // What the titles and the gaps between them have for a lower edge is not in one row.
        const int edge = actions().isEmpty() ? height() - 1 : actionGeometry(actions().first()).bottom() - 1;
        QRegion edges(0, edge, width(), height() - edge);
        if (activeAction() != nullptr) {
            edges -= actionGeometry(activeAction());
        }
        for (const QRect& part : edges) {
            painter.fillRect(part, plain);
        }
        painter.fillRect(QRect(0, height() - 1, width(), 1), plain.darker(DARKER_PERCENT));
    }
};

// With the letter marked that chooses it: the one in brackets at its end, 表示(V), else the first.
QString Marked(std::string_view cp932) {
    const QString text = ToText(cp932);
    const QString name = text.section(QLatin1Char('\t'), 0, 0);
    const bool bracketed =
        name.size() > 3 && name.endsWith(QLatin1Char(')')) && name.at(name.size() - 3) == QLatin1Char('(');
    const qsizetype place = bracketed ? name.size() - 2 : 0;
    const bool marks =
        place < name.size() && name.at(place).unicode() < 128 && name.at(place).isLetterOrNumber();
    const auto escaped = [](QString part) { return part.replace(QLatin1Char('&'), QLatin1String("&&")); };
    return escaped(text.left(place)) + (marks ? QLatin1String("&") : QLatin1String("")) +
           escaped(text.mid(place));
}

}  // namespace

QtFrame::QtFrame() {
    setMenuBar(new MenuBar(this));
}

void QtFrame::ShowMenus(const MenuTree& menus) {
    // Clearing the bar leaves its menus alive. They may be deleted only later: a menu's own script may be
    // what changes the bar.
    menuBar()->clear();
    for (QMenu* old : menuBar()->findChildren<QMenu*>(Qt::FindDirectChildrenOnly)) {
        old->deleteLater();
    }
    for (std::size_t position = 0; position < menus.size(); ++position) {
        const MenuColumn& column = menus[position];
        auto* menu = new QMenu(Marked(column.title), menuBar());
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
    FitMenuBar();
}

// A bar of 23 units would be 34.5 screen pixels high at 150 %, and half a row of background would show below
// it.
void QtFrame::FitMenuBar() {
    constexpr int MORE_MOST = 8;
    constexpr double ROUNDING = 0.001;
    const int needed = menuBar()->sizeHint().height();
    int height = needed;
    const auto isWhole = [&] {
        const double pixels = height * devicePixelRatioF();
        return std::abs(pixels - std::round(pixels)) < ROUNDING;
    };
    while (!isWhole() && height < needed + MORE_MOST) {
        ++height;
    }
    menuBar()->setMinimumHeight(height);
}

void QtFrame::EnterMenus() {
    const QList<QAction*> titles = menuBar()->actions();
    const auto first = std::ranges::find_if(titles, &QAction::isEnabled);
    if (first != titles.end()) {
        menuBar()->setActiveAction(*first);
    }
}

bool QtFrame::event(QEvent* event) {
    const bool done = QMainWindow::event(event);
    if (event->type() == QEvent::ScreenChangeInternal) {  // to a screen of another scale
        FitMenuBar();
    }
    return done;
}

void QtFrame::Fill(QMenu& menu, const std::vector<MenuEntry>& entries) {
    menu.clear();
    for (const MenuEntry& entry : entries) {
        if (entry.separator) {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(Marked(entry.text));
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
