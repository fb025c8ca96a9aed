// What the window shows: the frame through the palette, texts, panes and messages.
#include "host/qt/QTWINDOW.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

#include "host/BUTTONS.h"
#include "host/PANES.h"
#include "host/TEXTCUT.h"
#include "host/qt/QTTEXT.h"
#include "view/TEXTS.h"
#include "view/VIEW.h"

namespace quelmark {
namespace {

constexpr std::uint8_t FRAME_COLOUR = 13;
constexpr std::size_t LIST_COLUMNS = 9;  // the last one nearly: no half of a wide character is shown

// A raised or sunken rectangle: one cell of light at its left and top, one of shadow at its right and bottom.
void PaintEdge(QPainter& painter, const QRect& place, const QColor& light, const QColor& shadow) {
    painter.fillRect(QRect(place.left(), place.top(), place.width(), 1), light);
    painter.fillRect(QRect(place.left(), place.top(), 1, place.height()), light);
    painter.fillRect(QRect(place.left(), place.bottom(), place.width(), 1), shadow);
    painter.fillRect(QRect(place.right(), place.top(), 1, place.height()), shadow);
}

constexpr int LABEL_ROOM = BUTTON_SIZE - 2;

// Small enough for a line to fit on a button, as far as it can still be read.
QFont LabelFont(const QFont& font, const QString& line) {
    constexpr int LEAST = 8;
    QFont fitting = font;
    while (fitting.pixelSize() > LEAST && QFontMetrics(fitting).horizontalAdvance(line) > LABEL_ROOM) {
        fitting.setPixelSize(fitting.pixelSize() - 1);
    }
    return fitting;
}

// On two lines when it would not fit on one.
void PaintLabel(QPainter& painter, const QRect& place, QFont font, const QString& label) {
    const QFont onOne = LabelFont(font, label);
    const QFontMetrics metrics(onOne);
    const int width = metrics.horizontalAdvance(label);
    if (width <= LABEL_ROOM) {
        painter.setFont(onOne);
        painter.drawText(place, Qt::AlignCenter | Qt::TextDontClip, label);
        return;
    }
    qsizetype half = 1;
    while (2 * metrics.horizontalAdvance(label.left(half)) < width) {
        ++half;
    }
    font.setPixelSize(LABEL_ROOM / 2);
    QRect line = place;
    line.setHeight(place.height() / 2);
    for (const QString& part : {label.left(half), label.mid(half)}) {
        painter.setFont(LabelFont(font, part));
        painter.drawText(line, Qt::AlignCenter | Qt::TextDontClip, part);
        line.translate(0, line.height());
    }
}

}  // namespace

QColor QtWindow::Entry(std::uint8_t index) const {
    return QColor::fromRgb(palette_[index & 15]);
}

void QtWindow::ExpandPicture(const QRect& area) {
    const PixelRect wanted{area.left(), area.top(), area.left() + area.width(), area.top() + area.height()};
    ExpandFrame(ViewFrame, Intersection(wanted, ViewFrame.Bounds()), palette_,
                reinterpret_cast<QRgb*>(picture_.bits()),
                picture_.bytesPerLine() / static_cast<qsizetype>(sizeof(QRgb)));
}

QRegion QtWindow::RecolourPicture(std::uint8_t entry) {
    QRegion region;
    if (picture_.width() == ViewFrame.width && picture_.height() == ViewFrame.height) {
        RecolourFrame(ViewFrame, entry, palette_, reinterpret_cast<QRgb*>(picture_.bits()),
                      picture_.bytesPerLine() / static_cast<qsizetype>(sizeof(QRgb)), recoloured_);
        for (const PixelRect& rect : recoloured_) {
            region += ToRect(rect);
        }
    }  // else nothing of this size has been painted yet
    return region;
}

// Some rows at a time, which are still in the processor's cache when they are copied.
void QtWindow::PaintPicture(QPainter& painter, const QRegion& region) {
    constexpr int ROWS = 64;
    for (const QRect& rect : region) {
        const QRect shown = rect.intersected(picture_.rect());
        for (int top = shown.top(); top <= shown.bottom(); top += ROWS) {
            const QRect rows = shown.intersected(QRect(shown.left(), top, shown.width(), ROWS));
            for (const QRect& part : stale_.intersected(rows)) {
                ExpandPicture(part);
            }
            painter.drawImage(rows.topLeft(), picture_, rows);
        }
    }
    stale_ -= region;
    unseen_ -= region;
}

void QtWindow::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    PaintOnGrid(painter, grid_);
    if (!hosted_ || ViewFrame.width < 1) {
        painter.fillRect(ToGrid(grid_, event->rect()), Qt::darkGray);
        return;
    }
    if (picture_.width() != ViewFrame.width || picture_.height() != ViewFrame.height) {
        picture_ = QImage(ViewFrame.width, ViewFrame.height, QImage::Format_RGB32);
        stale_ = picture_.rect();
    }
    QRegion region;
    for (const QRect& rect : event->region()) {
        region += ToGrid(grid_, rect);
    }
    PaintPicture(painter, region);
    painter.setFont(font_);
    PaintTexts(painter, region);
    // The pulse renews the views alone, many times a second.
    const auto meets = [&region](const PixelRect& pane) { return region.intersects(ToRect(pane)); };
    if (meets(ListRect())) {
        PaintList(painter);
    }
    if (meets(ButtonsRect())) {
        PaintButtons(painter);
    }
    if (meets(StatusRect())) {
        PaintStatus(painter);
    }
    PaintMessage(painter);
    PaintPreedit(painter);
}

void QtWindow::PaintTexts(QPainter& painter, const QRegion& region) {
    const int ascent = QFontMetrics(font_).ascent();
    const auto paint = [&](const ViewText& text) {
        const QRect place = ToRect(Intersection(text.clip, text.place));
        if (!region.intersects(place)) {
            return;
        }
        painter.setClipRect(place);
        painter.setPen(Entry(text.colour));
        painter.drawText(text.place.left, text.place.top + ascent, ToText(text.text));
    };
    std::ranges::for_each(ViewTitles(), paint);
    std::ranges::for_each(ViewTexts(), paint);
    painter.setClipping(false);
}

void QtWindow::PaintList(QPainter& painter) {
    const QRect panel = ToRect(ListRect());
    painter.fillRect(panel, Qt::black);
    painter.fillRect(QRect(panel.left(), panel.top(), 1, panel.height()), Entry(PANE_HIGHLIGHT));
    painter.setClipRect(panel);
    const int left = ListTextLeft();
    const int ascent = QFontMetrics(font_).ascent();
    for (const PaneRow& row : ListRows()) {
        const int top = row.row * lineHeight_;
        if (row.current) {
            painter.fillRect(QRect(panel.left() + 2, top, panel.width() - 2, lineHeight_),
                             Entry(FRAME_COLOUR));
        }
        painter.setPen(Entry(row.heading ? PANE_HIGHLIGHT : PANE_TEXT));
        painter.drawText(left, top + ascent, ToText(CutText(row.text, LIST_COLUMNS)).trimmed());
    }
    painter.setClipping(false);
}

void QtWindow::PaintButtons(QPainter& painter) {
    const QRect panel = ToRect(ButtonsRect());
    if (panel.isEmpty()) {
        return;
    }
    painter.setClipRect(panel);
    painter.fillRect(panel, Entry(PANE_HIGHLIGHT));
    for (const ButtonFace& face : ButtonFaces()) {
        const QRect place = ToRect(face.rect);
        const QColor light = Entry(face.pressed ? FRAME_COLOUR : PANE_TEXT);
        const QColor shadow = Entry(face.pressed ? PANE_TEXT : FRAME_COLOUR);
        PaintEdge(painter, place, light, shadow);
        const int shift = face.pressed ? 1 : 0;
        const QColor ink = face.enabled ? QColor(Qt::black) : Entry(FRAME_COLOUR);
        painter.setPen(ink);
        if (!face.picture) {
            const QRect inner = place.adjusted(1, 1, -1, -1);
            painter.setClipRect(inner & panel);
            PaintLabel(painter, inner.translated(shift, shift), labelFont_, ToText(face.label));
            painter.setClipRect(panel);
            continue;
        }
        for (int y = 0; y < 16; ++y) {
            for (int x = 0; x < 16; ++x) {
                if ((face.rows[static_cast<std::size_t>(y)] >> (15 - x) & 1) != 0) {
                    painter.fillRect(place.left() + 2 + shift + x, place.top() + 2 + shift + y, 1, 1, ink);
                }
            }
        }
    }
    painter.setFont(font_);
    painter.setClipping(false);
}

void QtWindow::PaintStatus(QPainter& painter) {
    const QRect bar = ToRect(StatusRect());
    painter.fillRect(bar, Entry(PANE_HIGHLIGHT));
    painter.fillRect(QRect(bar.left(), bar.top(), bar.width(), 1), Entry(PANE_TEXT));
    const int ascent = QFontMetrics(font_).ascent();
    for (std::int32_t field = 0; field < STATUS_FIELDS; ++field) {
        const QRect place = ToRect(StatusFieldRect(field));
        if (place.isEmpty()) {
            continue;
        }
        if (field > 0) {
            PaintEdge(painter, place, Entry(FRAME_COLOUR), Entry(PANE_TEXT));
        }
        painter.setClipRect(place.adjusted(1, 0, -1, 0));
        painter.setPen(Qt::black);
        const std::string& text = StatusFields()[static_cast<std::size_t>(field)].text;
        painter.drawText(place.left() + (field > 0 ? 2 : 0), place.top() + 1 + ascent, ToText(text));
        painter.setClipping(false);
    }
}

void QtWindow::PaintMessage(QPainter& painter) {
    const QRect band = ToRect(MessageRect());
    if (band.isEmpty()) {
        return;
    }
    painter.fillRect(band, Entry(PANE_TEXT));
    painter.fillRect(QRect(band.left(), band.top(), band.width(), 1), Qt::black);
    painter.setClipRect(band);
    painter.setPen(Qt::black);
    const int ascent = QFontMetrics(font_).ascent();
    int top = band.top() + lineHeight_ / 2;
    for (const std::string& line : MessageLines()) {
        painter.drawText(band.left() + characterWidth_, top + ascent, ToText(line));
        top += lineHeight_;
    }
    painter.setClipping(false);
}

// What an input method holds that is not yet typed, above the status bar.
void QtWindow::PaintPreedit(QPainter& painter) {
    if (preedit_.isEmpty()) {
        return;
    }
    const QRect place = PreeditRect();
    painter.fillRect(place, Entry(PANE_TEXT));
    painter.setPen(Qt::black);
    painter.drawText(place.left() + characterWidth_ / 2, place.top() + QFontMetrics(font_).ascent(),
                     preedit_);
    painter.fillRect(place.left(), place.bottom() - 1, place.width(), 1, Qt::black);
}

}  // namespace quelmark
