#include "host/qt/QTROWAREA.h"

#include <QEvent>
#include <QScrollBar>

namespace quelmark {

QtRowArea::QtRowArea(QWidget* rows, QSize room) : room_(room) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);  // the keyboard goes from row to row
    setWidgetResizable(true);
    setWidget(rows);
    for (QWidget* control : rows->findChildren<QWidget*>()) {
        control->installEventFilter(this);
    }
}

QSize QtRowArea::sizeHint() const {
    const QSize rows = widget()->minimumSize();
    QSize size = rows;
    if (rows.height() > room_.height()) {
        size.rwidth() += verticalScrollBar()->sizeHint().width();
    }
    if (rows.width() > room_.width()) {
        size.rheight() += horizontalScrollBar()->sizeHint().height();
    }
    return size.boundedTo(room_);
}

// One row alone is less than the library's least.
QSize QtRowArea::minimumSizeHint() const {
    return QScrollArea::minimumSizeHint().boundedTo(sizeHint());
}

// The wheel scrolls the rows; it changes a row only where the keyboard is, so that none changes by being
// scrolled past.
bool QtRowArea::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Wheel || verticalScrollBar()->maximum() == 0) {
        return QScrollArea::eventFilter(watched, event);
    }
    const auto* control = qobject_cast<QWidget*>(watched);
    if (control == nullptr || !widget()->isAncestorOf(control) || control->hasFocus()) {
        return QScrollArea::eventFilter(watched, event);
    }
    event->ignore();
    return true;
}

}  // namespace quelmark
