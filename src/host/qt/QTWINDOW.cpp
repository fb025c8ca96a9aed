#include "host/qt/QTWINDOW.h"

#include <QAbstractEventDispatcher>
#include <QApplication>
#include <QDesktopServices>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QInputMethodEvent>
#include <QMimeData>
#include <QTimer>
#include <QToolTip>
#include <QUrl>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

#include "ML/ERROR.h"
#include "host/BUTTONS.h"
#include "host/HOST.h"
#include "host/INPUT.h"
#include "host/LOOPEVENT.h"
#include "host/PALETTE.h"
#include "host/PANES.h"
#include "host/qt/KEYTABLE.h"
#include "host/qt/QTDIALOG.h"
#include "host/qt/QTFILEDIALOG.h"
#include "host/qt/QTTEXT.h"
#include "text/sjis.h"
#include "view/TEXTS.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr int FONT_PIXELS = 16;
constexpr int WHEEL_TURN = 120;
constexpr std::size_t KEYS_MOST = 64;  // typed ahead
constexpr std::size_t F10 = 10;        // among the special keys

// A fixed-pitch font in which a half-width character is half a full-width one.
QFont JapaneseFont() {
    const QStringList wanted = {"IPAGothic", "IPA Gothic", "IPAゴシック", "VL Gothic",
                                "Noto Sans Mono CJK JP"};
    const QStringList families = QFontDatabase::families();
    QFont font;
    const auto found =
        std::ranges::find_if(wanted, [&](const QString& name) { return families.contains(name); });
    font.setFamily(found != wanted.end() ? *found : QStringLiteral("monospace"));
    font.setStyleHint(QFont::Monospace);
    font.setFixedPitch(true);
    font.setPixelSize(FONT_PIXELS);
    return font;
}

QElapsedTimer windowClock;  // since the window was made

}  // namespace

QtWindow::QtWindow(QtFrame& frame) : QWidget(&frame), frame_(frame) {
    frame.picked = [this](std::int32_t code) { PutInput(code); };
    frame.closeWanted = [this] { state_.closeRequested = true; };
    windowClock.start();
    setFont(JapaneseFont());
    labelFont_ = font();
    Measure();
    setMouseTracking(true);
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    setFocus();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_InputMethodEnabled);
    setMinimumSize(1, 1);
    frame.setAttribute(Qt::WA_AlwaysShowToolTips);
    QtWindow::SetTitle("");
    frame.setCentralWidget(this);
    frame.resize(1024, 768);
}

void QtWindow::Measure() {
    grid_ = GridOf(*this);
    font_ = font();
    font_.setPixelSize(FontCells(grid_, FONT_PIXELS));
    const QFontMetrics metrics(font_);
    characterWidth_ = std::max(metrics.horizontalAdvance(QLatin1Char('0')), 1);
    lineHeight_ = std::max(metrics.height(), 1);
    if (hosted_) {
        HostResized();
    }
    update();
}

// ---- messages and input ----

void QtWindow::Deliver(std::int32_t milliseconds) {
    if (milliseconds <= 0) {
        // One round leaves what it has caused itself: a new size, and then the paint, come in the next ones.
        constexpr int ROUNDS_MOST = 20;
        QAbstractEventDispatcher& dispatcher = *QAbstractEventDispatcher::instance();
        for (int round = 0; round < ROUNDS_MOST && dispatcher.processEvents(QEventLoop::AllEvents); ++round) {
        }
        return;
    }
    if (!pending_.empty()) {
        QCoreApplication::processEvents();
        return;
    }
    QTimer timer;
    timer.setSingleShot(true);
    timer.start(milliseconds);
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

InputState QtWindow::TakeInput() {
    InputState taken = state_;
    if (!pending_.empty()) {
        const PendingInput& step = pending_.front();
        taken.keyCode = step.code;
        taken.x = step.x;
        taken.y = step.y;
        taken.left = step.left;
        taken.right = step.right;
        taken.shift = step.shift;
        pending_.pop_front();
    }
    state_.wheel = 0;
    state_.closeRequested = false;
    state_.dropped.clear();
    return taken;
}

bool QtWindow::TakeBreakKey() {
    return TakeKey([](const PendingInput& key) {
        return key.code == KEY_DELETE && key.shift == (SHIFT_KEY | CTRL_KEY);
    });
}

bool QtWindow::TakeCloseRequest() {
    return std::exchange(state_.closeRequested, false);
}

bool QtWindow::TakeEscapeKey() {
    return TakeKey([](const PendingInput& key) { return key.code == KEY_ESCAPE; });
}

template <class Test>
bool QtWindow::TakeKey(Test isWanted) {
    QCoreApplication::processEvents();
    if (std::ranges::none_of(pending_, isWanted)) {
        return false;
    }
    std::erase_if(pending_, IsKey);
    return true;
}

void QtWindow::KeepLastKey() {
    const auto last = std::ranges::find_if(pending_.rbegin(), pending_.rend(), IsKey);
    const PendingInput key = last != pending_.rend() ? *last : PendingInput{};
    pending_.clear();
    state_.wheel = 0;
    if (IsKey(key)) {
        pending_.push_back({key.code, state_.x, state_.y, state_.left, state_.right, key.shift});
    }
}

std::uint32_t QtWindow::Milliseconds() {
    return static_cast<std::uint32_t>(windowClock.elapsed());
}

bool QtWindow::event(QEvent* event) {
    // Tab is a key like any other here.
    if (event->type() == QEvent::KeyPress) {
        keyPressEvent(static_cast<QKeyEvent*>(event));
        return true;
    }
    if (event->type() == QEvent::ToolTip) {
        ShowTip(*static_cast<QHelpEvent*>(event));
        return true;
    }
    if (event->type() == QEvent::ScreenChangeInternal) {  // to a screen of another scale
        Measure();
    }
    return QWidget::event(event);
}

// The pointer rests: the full name of what it is on.
void QtWindow::ShowTip(const QHelpEvent& event) {
    const QPoint place = CellOfPointer(event.pos());
    const std::string tip = hosted_ ? PaneTip(place.x(), place.y()) : "";
    // As rich text, so that no name is taken for mark-up; in one line, with its blanks.
    const QString text = "<p style='white-space:pre'>" + ToText(tip).toHtmlEscaped() + "</p>";
    QToolTip::showText(event.globalPos(), tip.empty() ? QString() : text, this);
}

void QtWindow::TakeShift(Qt::KeyboardModifiers modifiers) {
    state_.shift = ((modifiers & Qt::ShiftModifier) != 0 ? SHIFT_KEY : 0) |
                   ((modifiers & Qt::ControlModifier) != 0 ? CTRL_KEY : 0);
}

void QtWindow::PutInput(std::int32_t code) {
    pending_.push_back({code, state_.x, state_.y, state_.left, state_.right, state_.shift});
}

void QtWindow::PutKey(std::int32_t code) {
    if (code != 0 && pending_.size() < KEYS_MOST) {
        PutInput(code);
    }
}

void QtWindow::keyPressEvent(QKeyEvent* event) {
    Qt::KeyboardModifiers modifiers = event->modifiers();
    modifiers |= event->key() == Qt::Key_Shift ? Qt::ShiftModifier : Qt::NoModifier;
    modifiers |= event->key() == Qt::Key_Control ? Qt::ControlModifier : Qt::NoModifier;
    TakeShift(modifiers);
    if ((modifiers & Qt::AltModifier) != 0) {
        return;  // for the menu bar and the window system
    }
    if (event->key() == Qt::Key_F10 && modifiers == Qt::NoModifier && Handlers.special[F10] < 0) {
        frame_.EnterMenus();
    }
    if (const std::int32_t code = KeyCodeOf(*event)) {
        return PutKey(code);
    }
    const auto text = Utf8ToCp932(event->text().toStdString());
    for (const char byte : text.value_or("")) {
        PutKey(static_cast<unsigned char>(byte));
    }
}

void QtWindow::keyReleaseEvent(QKeyEvent* event) {
    Qt::KeyboardModifiers modifiers = event->modifiers();
    modifiers &=
        event->key() == Qt::Key_Shift ? ~Qt::KeyboardModifiers(Qt::ShiftModifier) : ~Qt::KeyboardModifiers();
    modifiers &= event->key() == Qt::Key_Control ? ~Qt::KeyboardModifiers(Qt::ControlModifier)
                                                 : ~Qt::KeyboardModifiers();
    TakeShift(modifiers);
}

void QtWindow::inputMethodEvent(QInputMethodEvent* event) {
    const auto text = Utf8ToCp932(event->commitString().toStdString());
    if (!text) {
        Warning("シフトJISで表せない文字は使えません。"_sjis);
    }
    for (const char byte : text.value_or("")) {
        PutKey(static_cast<unsigned char>(byte));
    }
    preedit_ = event->preeditString();
    update();
    event->accept();
}

// Where an input method shows its choices: beside the text that is being written.
QVariant QtWindow::inputMethodQuery(Qt::InputMethodQuery query) const {
    return query == Qt::ImCursorRectangle && hosted_ ? QVariant(FromGrid(grid_, PreeditRect()))
                                                     : QWidget::inputMethodQuery(query);
}

QRect QtWindow::PreeditRect() const {
    const int width = QFontMetrics(font_).horizontalAdvance(preedit_) + characterWidth_;
    return {0, StatusRect().top - lineHeight_ - 2, width, lineHeight_ + 2};
}

// The library rounds the place of most events to its own units; where the mouse was last is known exactly.
QPoint QtWindow::CellOfPointer(QPointF rounded) const {
    const QPointF off = rounded - pointer_;
    return ToGrid(grid_, std::max(std::abs(off.x()), std::abs(off.y())) < 1 ? pointer_ : rounded);
}

void QtWindow::TakePlace(QPointF rounded) {
    const QPoint place = CellOfPointer(rounded);
    state_.x = place.x();
    state_.y = place.y();
}

void QtWindow::TakeMouse(const QMouseEvent& event) {
    // The scene is the native window, which is the client area's own once it has one.
    pointer_ = event.scenePosition() - (internalWinId() != 0 ? QPoint() : mapTo(window(), QPoint(0, 0)));
    TakePlace(event.position());
    state_.left = (event.buttons() & Qt::LeftButton) != 0;
    state_.right = (event.buttons() & Qt::RightButton) != 0;
    TakeShift(event.modifiers());
}

void QtWindow::TakeButtons(const QMouseEvent& event) {
    TakeMouse(event);
    PutInput(0);
}

void QtWindow::mousePressEvent(QMouseEvent* event) {
    TakeButtons(*event);
}
void QtWindow::mouseReleaseEvent(QMouseEvent* event) {
    TakeButtons(*event);
}
void QtWindow::mouseMoveEvent(QMouseEvent* event) {
    TakeMouse(*event);
}

void QtWindow::wheelEvent(QWheelEvent* event) {
    TakePlace(event->position());
    TakeShift(event->modifiers());
    wheelRest_ += event->angleDelta().y();
    state_.wheel += wheelRest_ / WHEEL_TURN;
    wheelRest_ %= WHEEL_TURN;
}

// Files alone, and only when a script wants them. They are never taken away from where they come from.
void QtWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (hosted_ && DropWanted() && std::ranges::any_of(event->mimeData()->urls(), &QUrl::isLocalFile)) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

void QtWindow::dropEvent(QDropEvent* event) {
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile()) {
            state_.dropped.push_back(url.toLocalFile().toStdString());
        }
    }
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void QtWindow::focusOutEvent(QFocusEvent*) {
    LetGo();
}

void QtWindow::resizeEvent(QResizeEvent*) {
    Measure();
}
void QtWindow::moveEvent(QMoveEvent*) {
    Measure();  // below a menu bar of another height the grid may begin at another part of a pixel
}

// ---- what is shown ----

void QtWindow::Invalidate(Pane pane) {
    const PixelRect rect = pane == Pane::List      ? ListRect()
                           : pane == Pane::Buttons ? ButtonsRect()
                           : pane == Pane::Status  ? StatusRect()
                                                   : MessageRect();
    Renew(ToRect(rect));
}

void QtWindow::InvalidateFrame(const PixelRect& rect) {
    stale_ += ToRect(rect);
    unseen_ += ToRect(rect);
    Renew(ToRect(rect));
}

QRegion QtWindow::PixelsOf(const QRegion& cells) const {
    QRegion pixels;
    for (const QRect& rect : cells) {
        pixels += FromGrid(grid_, rect);
    }
    return pixels;
}

void QtWindow::SetPalette(std::int32_t index, std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    const QRgb colour = qRgb(red, green, blue);
    QRgb& entry = palette_[static_cast<std::size_t>(index & 15)];
    if (entry == colour) {
        return;
    }
    entry = colour;
    const QRegion recoloured = RecolourPicture(static_cast<std::uint8_t>(index & 15));
    unseen_ += recoloured;
    update(PixelsOf(recoloured));
    if (index != PULSE_ENTRY) {
        update();  // panes and texts of that colour too
        return;
    }
    const auto renew = [this](const ViewText& text) {
        if (text.colour == PULSE_ENTRY) {
            Renew(ToRect(text.place));
        }
    };
    std::ranges::for_each(ViewTitles(), renew);
    std::ranges::for_each(ViewTexts(), renew);
}

void QtWindow::SetTitle(std::string_view title) {
    const QString name = QStringLiteral("Quelmark");
    frame_.setWindowTitle(title.empty() ? name : name + " - " + ToText(title));
}

void QtWindow::LetGo() {
    state_.shift = 0;
    state_.left = state_.right = false;
    std::erase_if(pending_, [](const PendingInput& input) { return !IsKey(input); });
    for (PendingInput& key : pending_) {
        key.left = key.right = false;
    }
}

std::int32_t QtWindow::RunDialog(Dialog& dialog) {
    LetGo();
    return QtRunDialog(this, dialog, [&](std::int32_t row) { return TellChange(dialog, row); });
}

// What the dialog's handler has drawn is to be seen at once, however fast the next changes come.
bool QtWindow::TellChange(Dialog& dialog, std::int32_t row) {
    if (telling_++ == 0) {
        QCoreApplication::instance()->installEventFilter(this);
    }
    const bool goesOn = DialogChanged(dialog, row);
    if (--telling_ == 0) {
        QCoreApplication::instance()->removeEventFilter(this);
    }
    if (!unseen_.isEmpty()) {
        repaint(PixelsOf(unseen_));
    }
    return goesOn;
}

// The keyboard is the dialog's while its handler runs, but Shift+Ctrl+Delete still stops the handler.
bool QtWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride) {
        return QWidget::eventFilter(watched, event);
    }
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() != Qt::Key_Delete || key->modifiers() != (Qt::ShiftModifier | Qt::ControlModifier)) {
        return QWidget::eventFilter(watched, event);
    }
    pending_.push_back({KEY_DELETE, state_.x, state_.y, false, false, SHIFT_KEY | CTRL_KEY});
    return true;
}

std::string QtWindow::RunFileDialog(const FileDialog& dialog) {
    LetGo();
    return QtRunFileDialog(this, dialog);
}

void QtWindow::OpenDocument(const std::string& path) {
    const QFileInfo document(QString::fromStdString(path));
    QDesktopServices::openUrl(QUrl::fromLocalFile(document.absoluteFilePath()));
}

void QtWindow::Beep() {
    QApplication::beep();
}

// The client area has a native window of its own from the first time that its handle is asked for. Until the
// window server has had it painted, what another program draws into it would be lost.
std::uint64_t QtWindow::Handle() {
    constexpr std::int32_t PAINTED_MOST = 1000;
    constexpr std::int32_t ROUND = 10;
    const bool isNew = internalWinId() == 0;
    const WId handle = winId();
    const qint64 end = windowClock.elapsed() + PAINTED_MOST;
    while (isNew && isVisible() && !windowHandle()->isExposed() && windowClock.elapsed() < end) {
        Deliver(ROUND);
    }
    return static_cast<std::uint64_t>(handle);
}

// The native window's first pixel is the grid's first, or the whole one next to it.
PixelRect QtWindow::NativeRect(const PixelRect& rect) const {
    const int cell = grid_.cell;
    return {rect.left * cell, rect.top * cell, rect.right * cell, rect.bottom * cell};
}

}  // namespace quelmark
