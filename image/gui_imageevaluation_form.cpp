#include "image/gui_imageevaluation_form.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/parser.h"
#include "framework/translate.h"
#include "image/bitmapfile.h"
#include "image/currentimage.h"
#include "image/evaluation.h"
#include "image/imagepicker_form.h"
#include "image/selectionview_form.h"

#include <QBoxLayout>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QTabWidget>

namespace dv {

namespace {
QLineEdit* NamedEdit(const char* name, QWidget* parent)
{
    auto* edit = new QLineEdit(parent);
    edit->setObjectName(QString::fromLatin1(name));
    return edit;
}

// The label of a row that holds more than its edit: its mnemonic leads to the edit.
QLabel* LabelFor(const QString& text, QWidget* edit)
{
    auto* label = new QLabel(text, edit->parentWidget());
    label->setBuddy(edit);
    return label;
}

QHBoxLayout* Row(QWidget* a, QWidget* b)
{
    auto* row = new QHBoxLayout;
    row->addWidget(a);
    row->addWidget(b);
    return row;
}
}  // namespace

TFormImageEvaluation::TFormImageEvaluation(TDVCmdImageEvaluation& command)
    : TBoundForm(command, QStringLiteral("TFormImageEvaluation"), _("Bild Auswerten"), 112, QStringLiteral("DVHelpButton1"))
{
    auto* pages = new QTabWidget(this);
    pages->setObjectName(QStringLiteral("PageControl1"));
    current_ = new TImagePreview(QStringLiteral("ImageIs"), pages);
    reference_ = new TSelectionView(QStringLiteral("ImageOught"), QStringLiteral("ShapeSelection"), pages);
    pages->addTab(current_, _("Interner Puffer"));
    pages->addTab(reference_, _("Vergleichsbild"));
    Body()->addWidget(pages);

    file_ = NamedEdit("DVEdit_File", this);
    auto* choose = new QPushButton(_("Ö&ffnen"), this);
    choose->setObjectName(QStringLiteral("ButtonLoad"));
    choose->setAutoDefault(false);
    rect_ = NamedEdit("DVEdit_Rect", this);
    auto* displacement = NamedEdit("DVEdit_Displacement", this);
    displacement->setText(QStringLiteral("0"));
    // The up-down beside the tolerance: steps the number in the edit.
    auto* upDown = new QScrollBar(Qt::Vertical, this);
    upDown->setObjectName(QStringLiteral("UpDown1"));
    upDown->setRange(-1000, 0);
    upDown->setFixedHeight(displacement->sizeHint().height());
    connect(upDown, &QScrollBar::valueChanged, displacement, [displacement](int v) { displacement->setText(QString::number(-v)); });
    connect(displacement, &QLineEdit::textEdited, upDown, [upDown](const QString& t) {
        const QSignalBlocker block(upDown);
        upDown->setValue(-t.toInt());
    });
    auto* rows = new QFormLayout;
    rows->addRow(LabelFor(_("&Dateiname Vergleichsbild"), file_), Row(file_, choose));
    rows->addRow(_("&Bereich"), rect_);
    rows->addRow(LabelFor(_("&Positionstoleranz"), displacement), Row(displacement, upDown));
    rows->addRow(_("&Ergebnis-Variable"), NamedEdit("DVEdit_Result", this));
    Body()->addLayout(rows);

    auto* modes = new QGroupBox(this);
    auto* modeRow = new QHBoxLayout(modes);
    const std::pair<const char*, const char*> radios[] = {{"DVRadioButton_Compare", "&Vergleich"},
                                                          {"DVRadioButton_CompareMax", "&Vergleich (Max)"},
                                                          {"DVRadioButton_Coverage", "&Abdeckung"}};
    for (const auto& [name, caption] : radios) {
        auto* radio = new QRadioButton(_(caption), modes);
        radio->setObjectName(QString::fromLatin1(name));
        modeRow->addWidget(radio);
    }
    Body()->addWidget(modes);

    connect(choose, &QPushButton::clicked, this, [this] { Choose(); });
    connect(rect_, &QLineEdit::textChanged, this, [this](const QString& t) { RectEdited(t); });
    connect(reference_, &TSelectionView::SelectionDrawn, this, [this](const QRect& a) { SelectionDrawn(a); });
    AttachVariableEditors();
}

void TFormImageEvaluation::LoadFields()
{
    TBoundForm::LoadFields();
    auto* compare = findChild<QRadioButton*>(QStringLiteral("DVRadioButton_Compare"));
    const bool anyMode = compare->isChecked() || findChild<QRadioButton*>(QStringLiteral("DVRadioButton_CompareMax"))->isChecked() ||
                         findChild<QRadioButton*>(QStringLiteral("DVRadioButton_Coverage"))->isChecked();
    if (!anyMode) compare->setChecked(true);
    current_->ShowImage(CurrentImage::snapshot());
    ShowReference(file_->text());
}

void TFormImageEvaluation::Choose()
{
    const QString path = ChooseBitmapFile(this, TBitmapChoice::Open);
    if (path.isEmpty()) return;
    file_->setText(image::PortableFileText(path, image::ProjectFolderVariable()));
    ShowReference(file_->text());
}

void TFormImageEvaluation::ShowReference(const QString& fileText)
{
    QImage picture;
    try {
        if (!fileText.trimmed().isEmpty()) picture = image::ReadBitmap(ResolveProjectPath(StripQuotes(fileText.trimmed())));
    } catch (const TDravikException&) {
        // A file that cannot be read yet (a variable, a file still to come) shows no picture.
    }
    reference_->ShowImage(picture);
    RectEdited(rect_->text());
}

void TFormImageEvaluation::RectEdited(const QString& text)
{
    reference_->SetSelection(image::RectOfText(text).value_or(QRect()));
}

void TFormImageEvaluation::SelectionDrawn(const QRect& area)
{
    const QSignalBlocker block(rect_);
    rect_->setText(RectText(area.x(), area.y(), area.width(), area.height()));
}

}  // namespace dv
