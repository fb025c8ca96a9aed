#include "host/qt/QTDIALOG.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QSlider>
#include <QSpinBox>
#include <QStyle>
#include <QToolTip>
#include <QVBoxLayout>
#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

#include "host/qt/QTFILEDIALOG.h"
#include "host/qt/QTROWAREA.h"
#include "host/qt/QTTEXT.h"
#include "text/path.h"
#include "text/sjis.h"

namespace quelmark {
namespace {

constexpr const char* ROW_LABEL = "row label";

using TakeAnswer = std::function<void()>;
using Changed = std::function<void()>;

QLabel* AddLabel(QHBoxLayout& line, const std::string& text) {
    auto* label = new QLabel;
    label->setTextFormat(Qt::PlainText);  // "<" in a file name is no markup
    label->setText(ToText(text));
    line.addWidget(label);
    return label;
}

// The label before a control.
void AddRowLabel(QHBoxLayout& line, const DialogRow& row) {
    AddLabel(line, row.label)->setObjectName(ROW_LABEL);
}

// One width for all of them, so that the controls stand in a column.
void AlignLabels(const QWidget& rows) {
    const QList<QLabel*> labels = rows.findChildren<QLabel*>(ROW_LABEL);
    int width = 0;
    for (const QLabel* label : labels) {
        width = std::max(width, label->sizeHint().width());
    }
    for (QLabel* label : labels) {
        label->setMinimumWidth(width);
    }
}

// Why scripts cannot have a text; "" when they can.
std::string Fault(const QString& text) {
    const auto carried = Utf8ToCp932(text.toStdString());
    if (!carried) {
        return "シフトJISで表せない文字は使えません。"_sjis;
    }
    return carried->size() > DIALOG_TEXT_BYTES ? "文字列が長すぎます。"_sjis : "";
}

// What scripts cannot have is refused while it is typed: the field keeps its text and says why. A text that
// was too long from the beginning may become shorter.
void RefuseFaultyText(QLineEdit* field) {
    const auto kept = std::make_shared<QString>(field->text());
    QObject::connect(field, &QLineEdit::textChanged, field, [field, kept](const QString& text) {
        const std::string fault = Fault(text);
        if (fault.empty() || (text.size() < kept->size() && Utf8ToCp932(text.toStdString()))) {
            *kept = text;
            return;
        }
        QApplication::beep();
        QToolTip::showText(field->mapToGlobal(QPoint(0, field->height())), ToText(fault), field);
        const int cursor = field->cursorPosition();
        const auto longer = static_cast<int>(text.size() - kept->size());
        field->setText(*kept);
        field->setCursorPosition(std::max(cursor - longer, 0));
    });
}

void AddBrowseButton(QHBoxLayout& line, QLineEdit* field, const DialogRow& row) {
    auto* button = new QPushButton(QStringLiteral("…"));
    button->setAutoDefault(false);  // Enter belongs to the accept button
    line.addWidget(button);
    QObject::connect(button, &QPushButton::clicked, field, [field, &row] {
        FileDialog dialog;
        dialog.title = row.label;
        dialog.initialName = Utf8ToCp932(field->text().toStdString()).value_or("");
        dialog.filters = row.filters;
        dialog.defaultExtension = row.defaultExtension;
        const auto path = ScriptPath(QtRunFileDialog(field, dialog));
        if (path && !path->empty()) {
            field->setText(ToText(*path));
        }
    });
}

TakeAnswer AddField(QHBoxLayout& line, DialogRow& row, const Changed& changed) {
    AddRowLabel(line, row);
    auto* field = new QLineEdit(ToText(row.text));
    line.addWidget(field);  // from here on it has the dialog's font
    const int width = std::clamp(row.width, 1, 80);
    const int frame = field->minimumSizeHint().width();
    field->setMinimumWidth(QFontMetrics(field->font()).horizontalAdvance(QLatin1Char('0')) * width + frame);
    RefuseFaultyText(field);
    if (!row.filters.empty()) {
        AddBrowseButton(line, field, row);
    }
    const auto text = [field] { return Utf8ToCp932(field->text().toStdString()).value_or(""); };
    QObject::connect(field, &QLineEdit::textChanged, field, [text, &row, changed] {
        if (text() != row.text) {  // not for a character that has been refused
            changed();
        }
    });
    return [text, &row] { row.text = text(); };
}

TakeAnswer AddToggle(QHBoxLayout& line, DialogRow& row, const Changed& changed) {
    AddRowLabel(line, row);
    auto* box = new QCheckBox(ToLabel(row.caption));
    box->setChecked(row.value != 0);
    line.addWidget(box);
    QObject::connect(box, &QCheckBox::toggled, box, changed);
    return [box, &row] { row.value = box->isChecked() ? 1 : 0; };
}

TakeAnswer AddSelection(QHBoxLayout& line, DialogRow& row, const Changed& changed) {
    AddRowLabel(line, row);
    auto* list = new QComboBox;
    for (const std::string& choice : row.choices) {
        list->addItem(ToText(choice));
    }
    list->setCurrentIndex(row.value);
    line.addWidget(list);
    QObject::connect(list, &QComboBox::currentIndexChanged, list, changed);
    return [list, &row] { row.value = std::max(list->currentIndex(), 0); };
}

// The slider's number, six columns wide: it can be typed, too, as far as it lies within the slider's range.
QSpinBox* AddNumber(QHBoxLayout& line, const QSlider& slider) {
    constexpr int COLUMNS = 6;
    auto* number = new QSpinBox;
    number->setRange(slider.minimum(), slider.maximum());
    number->setSingleStep(slider.singleStep());
    number->setValue(slider.value());
    number->setAlignment(Qt::AlignRight);
    line.addWidget(number);  // from here on it has the dialog's font
    const QFontMetrics metrics(number->font());
    const int ends = std::max(metrics.horizontalAdvance(QString::number(slider.minimum())),
                              metrics.horizontalAdvance(QString::number(slider.maximum())));
    const int missing = metrics.horizontalAdvance(QLatin1Char('0')) * COLUMNS - ends;
    number->setMinimumWidth(number->sizeHint().width() + std::max(missing, 0));
    return number;
}

TakeAnswer AddSlider(QHBoxLayout& line, DialogRow& row, const Changed& changed) {
    constexpr int SLIDER_COLUMNS = 16;
    AddRowLabel(line, row);
    auto* slider = new QSlider(Qt::Horizontal);
    slider->setRange(row.lower, std::max(row.lower, row.upper));
    slider->setSingleStep(std::max(row.step, 1));
    slider->setPageStep(std::max(row.step, 1));
    slider->setValue(row.value);
    line.addWidget(slider);
    slider->setFixedWidth(SLIDER_COLUMNS * QFontMetrics(slider->font()).horizontalAdvance(QLatin1Char('0')));
    QSpinBox* number = AddNumber(line, *slider);
    QObject::connect(slider, &QSlider::valueChanged, number, &QSpinBox::setValue);
    QObject::connect(number, &QSpinBox::valueChanged, slider, &QSlider::setValue);
    QObject::connect(slider, &QSlider::valueChanged, slider, changed);
    return [slider, &row] { row.value = slider->value(); };
}

TakeAnswer AddRow(QHBoxLayout& line, DialogRow& row, const Changed& changed) {
    switch (row.kind) {
        case RowKind::Text:
            return AddField(line, row, changed);
        case RowKind::Toggle:
            return AddToggle(line, row, changed);
        case RowKind::Selection:
            return AddSelection(line, row, changed);
        case RowKind::Slider:
            return AddSlider(line, row, changed);
        case RowKind::Message:
            AddLabel(line, row.label);
            break;
    }
    return [] {};
}

// The buttons' results are told apart from the library's own by this.
constexpr int RESULT_BASE = 1000;

QWidget* MakeButtons(QDialog& shown, const Dialog& dialog) {
    auto* buttons = new QWidget;
    auto* line = new QHBoxLayout(buttons);
    line->addStretch();
    for (std::size_t i = 0; i < dialog.buttons.size(); ++i) {
        auto* button = new QPushButton(ToLabel(dialog.buttons[i].label));
        button->setAutoDefault(false);
        button->setDefault(i == dialog.acceptButton);
        line->addWidget(button);
        const int result = RESULT_BASE + dialog.buttons[i].result;
        QObject::connect(button, &QPushButton::clicked, &shown, [&shown, result] { shown.done(result); });
    }
    line->addStretch();
    return buttons;
}

// Gives rows and buttons their places. A line is as high as the font, or as the highest control of the rows.
void Place(const Dialog& dialog, QWidget& rows, const std::vector<QWidget*>& lines, QWidget& buttons) {
    const QFontMetrics metrics(rows.font());
    const int column = metrics.horizontalAdvance(QLatin1Char('0'));
    int line = metrics.height();
    int widest = 0;
    for (const QWidget* one : lines) {
        line = std::max(line, one->sizeHint().height());
        widest = std::max(widest, one->sizeHint().width());
    }
    const DialogLayout layout = LayOutDialog(dialog, column, line);
    const int width = std::max(layout.width, layout.margin + widest + 3 * column);
    const int foot = 3 * line;
    rows.setMinimumSize(width, layout.height - foot);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        lines[i]->setGeometry(layout.margin, layout.rowTop[i], width - layout.margin, line);
    }
    const QList<QPushButton*> all = buttons.findChildren<QPushButton*>();
    for (qsizetype i = 0; i < all.size(); ++i) {
        all[i]->setFixedWidth(layout.buttonWidth[static_cast<std::size_t>(i)]);
    }
    buttons.layout()->setContentsMargins(column, 0, column, 0);
    buttons.setFixedHeight(foot);
}

// The keyboard begins where something can be typed or moved at once, else at the first list or toggle, which
// is the toolkit's own choice, else at the accept button.
void BeginKeyboard(const Dialog& dialog, const std::vector<QWidget*>& lines, const QWidget& buttons) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (dialog.rows[i].kind == RowKind::Text) {
            auto* field = lines[i]->findChild<QLineEdit*>();
            field->setFocus();
            field->selectAll();  // what is typed takes its place, as in the fields that Tab reaches
            return;
        }
        if (dialog.rows[i].kind == RowKind::Slider) {
            return lines[i]->findChild<QSlider*>()->setFocus();
        }
    }
    const bool answers =
        std::ranges::any_of(dialog.rows, [](const DialogRow& row) { return row.kind != RowKind::Message; });
    if (!answers && !dialog.buttons.empty()) {
        buttons.findChildren<QPushButton*>().at(static_cast<qsizetype>(dialog.acceptButton))->setFocus();
    }
}

// What the screen leaves for the rows, beside the window's frame and the buttons.
QSize RoomForRows(const QDialog& shown, const QWidget& buttons) {
    const int title = 2 * shown.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    return shown.screen()->availableSize() - QSize(0, title + buttons.height());
}

// Wide enough for the title and the title bar's own buttons.
int TitleWidth(const QDialog& shown) {
    const int text =
        QFontMetrics(QApplication::font("QMdiSubWindowTitleBar")).horizontalAdvance(shown.windowTitle());
    const int bar = shown.style()->pixelMetric(QStyle::PM_TitleBarHeight);
    return std::min(text + 5 * bar, shown.screen()->availableSize().width());
}

}  // namespace

std::int32_t QtRunDialog(QWidget* parent, Dialog& dialog,
                         const std::function<bool(std::int32_t row)>& changed) {
    QDialog shown(parent);
    shown.setWindowTitle(ToText(dialog.title));
    shown.setFont(parent->font());
    auto* rows = new QWidget;
    rows->setFont(shown.font());
    std::ranges::stable_sort(dialog.rows, {}, &DialogRow::row);
    std::vector<QWidget*> lines;
    std::vector<TakeAnswer> answers;
    const auto take = [&answers] { std::ranges::for_each(answers, [](const TakeAnswer& one) { one(); }); };
    for (DialogRow& row : dialog.rows) {
        lines.push_back(new QWidget(rows));
        auto* line = new QHBoxLayout(lines.back());
        line->setContentsMargins(0, 0, 0, 0);
        answers.push_back(AddRow(*line, row, [take, &changed, &shown, number = row.row] {
            take();
            if (!changed(number)) {
                shown.reject();
            }
        }));
        line->addStretch();
    }
    AlignLabels(*rows);
    QWidget* buttons = MakeButtons(shown, dialog);
    Place(dialog, *rows, lines, *buttons);
    auto* whole = new QVBoxLayout(&shown);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    whole->addWidget(new QtRowArea(rows, RoomForRows(shown, *buttons)));
    whole->addWidget(buttons);
    BeginKeyboard(dialog, lines, *buttons);
    shown.resize(shown.sizeHint().expandedTo({TitleWidth(shown), 0}));
    const int result = shown.exec();
    take();
    return result >= RESULT_BASE ? result - RESULT_BASE : 0;
}

}  // namespace quelmark
