// drag_source FILE…: a window at the right edge of the screen out of which the files can be dragged.
#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>

namespace {

class Source : public QWidget {
  public:
    QList<QUrl> files;

  protected:
    void mousePressEvent(QMouseEvent*) override {
        auto* data = new QMimeData;
        data->setUrls(files);
        auto* drag = new QDrag(this);
        drag->setMimeData(data);
        drag->exec(Qt::CopyAction | Qt::MoveAction, Qt::MoveAction);
    }
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    Source source;
    for (int i = 1; i < argc; ++i) {
        source.files.push_back(QUrl::fromLocalFile(QString::fromLocal8Bit(argv[i])));
    }
    source.setWindowTitle(QStringLiteral("source"));
    source.setGeometry(1100, 0, 200, 200);
    source.show();
    return QApplication::exec();
}
