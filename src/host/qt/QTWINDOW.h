// The main window: shows the views' frame through the palette, paints the panes, reports input. Input is only
// recorded here; what it means is decided when the wait step asks for it, so no script runs inside an event.
#pragma once

#include <QDropEvent>
#include <QFont>
#include <QHelpEvent>
#include <QImage>
#include <QRegion>
#include <QWidget>
#include <array>
#include <deque>
#include <vector>

#include "host/WINDOW.h"
#include "host/qt/PIXELGRID.h"
#include "host/qt/QTFRAME.h"

namespace quelmark {

class QtWindow final : public QWidget, public Window {
    Q_OBJECT

  public:
    explicit QtWindow(QtFrame& frame);

    void Deliver(std::int32_t milliseconds) override;
    InputState TakeInput() override;
    bool TakeBreakKey() override;
    bool TakeCloseRequest() override;
    bool TakeEscapeKey() override;
    void KeepLastKey() override;
    std::uint32_t Milliseconds() override;
    std::int32_t ClientWidth() const override { return grid_.width; }
    std::int32_t ClientHeight() const override { return grid_.height; }
    std::int32_t CharacterWidth() const override { return characterWidth_; }
    std::int32_t LineHeight() const override { return lineHeight_; }
    void Invalidate(Pane pane) override;
    void InvalidateFrame(const PixelRect& rect) override;
    void SetPalette(std::int32_t index, std::uint8_t red, std::uint8_t green, std::uint8_t blue) override;
    void SetTitle(std::string_view title) override;
    void SetMenu(const MenuTree& menus) override { frame_.ShowMenus(menus); }
    std::int32_t RunDialog(Dialog& dialog) override;
    std::string RunFileDialog(const FileDialog& dialog) override;
    void OpenDocument(const std::string& path) override;
    void Beep() override;
    std::uint64_t Handle() override;
    PixelRect NativeRect(const PixelRect& rect) const override;

    // From here on sizes are told to the host.
    void StartHost() { hosted_ = true; }

  protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    void ShowTip(const QHelpEvent& event);
    // The grid, the font and what the host lays out on them, for the window as it is now.
    void Measure();
    void Renew(const QRect& cells) { update(FromGrid(grid_, cells)); }
    QRegion PixelsOf(const QRegion& cells) const;
    QPoint CellOfPointer(QPointF rounded) const;
    void TakePlace(QPointF rounded);
    void TakeMouse(const QMouseEvent& event);
    void TakeButtons(const QMouseEvent& event);
    void TakeShift(Qt::KeyboardModifiers modifiers);
    void PutKey(std::int32_t code);
    // Bring the picture up to date: in an area, and where pixels are of an entry that has changed.
    void ExpandPicture(const QRect& area);
    QRegion RecolourPicture(std::uint8_t entry);
    void PaintPicture(QPainter& painter, const QRegion& region);
    void PaintTexts(QPainter& painter, const QRegion& region);
    void PaintList(QPainter& painter);
    void PaintButtons(QPainter& painter);
    void PaintStatus(QPainter& painter);
    void PaintMessage(QPainter& painter);
    void PaintPreedit(QPainter& painter);
    QRect PreeditRect() const;
    QColor Entry(std::uint8_t index) const;

    // A key, or with code 0 a change of the buttons, with what else was the case; kept until a step takes it,
    // one a step: much may come within one delivery.
    struct PendingInput {
        std::int32_t code;
        std::int32_t x, y;
        bool left, right;
        std::int32_t shift;
    };
    static bool IsKey(const PendingInput& input) { return input.code != 0; }
    void PutInput(std::int32_t code);
    // Delivers messages without waiting; when such a key is waiting, every key is taken.
    template <class Test>
    bool TakeKey(Test isWanted);
    // A dialog takes the keyboard and the mouse away: what was held is let go.
    void LetGo();
    bool TellChange(Dialog& dialog, std::int32_t row);
    int telling_ = 0;  // changes that are being told of, one inside the other

    QtFrame& frame_;
    InputState state_;
    std::deque<PendingInput> pending_;
    QString preedit_;             // of an input method
    QPointF pointer_;             // where the mouse was last
    std::int32_t wheelRest_ = 0;  // eighths of a degree not yet a whole turn
    FramePalette palette_{};
    PixelGrid grid_;
    QFont font_;                         // of the panes, in cells
    QFont labelFont_;                    // of the buttons, whose size in cells is always the same
    QImage picture_;                     // the frame in 32 bits
    std::vector<PixelRect> recoloured_;  // by the last change of a palette entry, in cells
    QRegion stale_;                      // what of the picture is not as the frame is, in cells
    QRegion unseen_;  // what of the frame, or of its colours, changed and is not painted yet, in cells
    std::int32_t characterWidth_ = 8, lineHeight_ = 16;
    bool hosted_ = false;
};

}  // namespace quelmark
