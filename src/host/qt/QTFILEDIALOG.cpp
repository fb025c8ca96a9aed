#include "host/qt/QTFILEDIALOG.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHeaderView>
#include <QLocale>
#include <QScreen>
#include <QSplitter>
#include <QStyledItemDelegate>
#include <QTreeView>
#include <utility>

#include "host/qt/QTTEXT.h"
#include "text/path.h"

namespace quelmark {
namespace {

// The columns of the library's list of files.
enum Column : int { NAME, SIZE, KIND, TIME };

// Sizes and times in Japanese whatever the desktop's language is, as the rest of the dialog.
class FileCell final : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override {
        QStyledItemDelegate::initStyleOption(option, index);
        const auto* files = qobject_cast<const QFileSystemModel*>(index.model());
        if (files == nullptr) {
            return;
        }
        const QLocale japanese(QLocale::Japanese, QLocale::Japan);
        if (index.column() == TIME) {
            option->text = japanese.toString(files->lastModified(index), QLocale::ShortFormat);
        } else if (!files->isDir(index)) {
            option->text = japanese.formattedDataSize(files->size(index));
        }
    }
};

// Wide enough for every column to be read whole. A file's kind is what its name ends in: the library's words
// for it are English.
void LayOut(QFileDialog& shown) {
    constexpr QSize ROOMY(800, 500);
    constexpr int PLACES = 160;
    shown.resize(ROOMY.boundedTo(shown.screen()->availableSize()));
    if (auto* parts = shown.findChild<QSplitter*>()) {
        parts->setSizes({PLACES, shown.width() - PLACES});
    }
    auto* files = shown.findChild<QTreeView*>();
    if (files == nullptr) {
        return;  // a dialog of the desktop's own
    }
    files->header()->hideSection(KIND);
    files->header()->setStretchLastSection(false);
    files->header()->setSectionResizeMode(NAME, QHeaderView::Stretch);
    for (const Column column : {SIZE, TIME}) {
        files->header()->setSectionResizeMode(column, QHeaderView::ResizeToContents);
        files->setItemDelegateForColumn(column, new FileCell(files));
    }
}

}  // namespace

std::string QtRunFileDialog(QWidget* parent, const FileDialog& dialog) {
    QFileDialog shown(parent, ToText(dialog.title));
    shown.setFileMode(QFileDialog::AnyFile);
    QStringList filters;
    for (const FileFilter& filter : dialog.filters) {
        filters.push_back(ToText(filter.text));
    }
    shown.setNameFilters(filters);
    shown.setDefaultSuffix(ToText(dialog.defaultExtension));
    const std::pair<QFileDialog::DialogLabel, QString> labels[] = {
        {QFileDialog::LookIn, QStringLiteral("フォルダ")},
        {QFileDialog::FileName, QStringLiteral("ファイル名")},
        {QFileDialog::FileType, QStringLiteral("種類")},
        {QFileDialog::Accept, QStringLiteral("決定")},
        {QFileDialog::Reject, QStringLiteral("中止")}};
    for (const auto& [label, text] : labels) {
        shown.setLabelText(label, text);
    }
    LayOut(shown);
    if (const auto initial = HostPath(dialog.initialName); initial && !initial->empty()) {
        const QString name = QString::fromStdString(*initial);
        if (QFileInfo(name).isDir()) {
            shown.setDirectory(name);
        } else {
            shown.selectFile(name);
        }
    }
    if (shown.exec() != QDialog::Accepted || shown.selectedFiles().isEmpty()) {
        return "";
    }
    return shown.selectedFiles().first().toStdString();
}

}  // namespace quelmark
