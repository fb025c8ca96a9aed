// The rows of a dialog: as large as they are where the screen has room, scrolled where it has not.
#pragma once

#include <QScrollArea>

namespace quelmark {

class QtRowArea final : public QScrollArea {
  public:
    // `room` is the most that the area may take.
    QtRowArea(QWidget* rows, QSize room);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QSize room_;
};

}  // namespace quelmark
