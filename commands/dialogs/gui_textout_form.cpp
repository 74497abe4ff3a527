#include "commands/dialogs/gui_textout_form.h"

#include "framework/catalogue.h"
#include "framework/intconvert.h"
#include "framework/forms/formbuilder.h"
#include "framework/translate.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QFontDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace dv {

namespace {

// Colour numbers keep red in the low byte.
QColor ToColor(int colour) { return QColor(colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF); }
int ToColourNumber(const QColor& c) { return c.red() | (c.green() << 8) | (c.blue() << 16); }

QVBoxLayout* Group(QWidget* owner, QVBoxLayout* body, const QString& caption)
{
    auto* group = new QGroupBox(caption, owner);
    auto* layout = new QVBoxLayout(group);
    body->addWidget(group);
    return layout;
}

}  // namespace

TFRM_TextOut::TFRM_TextOut(TDVCmdTextOut& command)
    : TCommandForm(command, QStringLiteral("TFRM_TextOut"), _("TextOut"),
                   FindCommandClass(QStringLiteral("TDVCmdTextOut"))->helpContext)
{
    QVBoxLayout* fontGroup = Group(this, Body(), _("Font"));
    TFormBuilder font(fontGroup->parentWidget(), fontGroup);
    font_ = font.Edit(QStringLiteral("Edit_Schriftart"), _("Schriftart:"));
    style_ = font.Edit(QStringLiteral("Edit_Schriftstyle"), _("Style:"));
    size_ = font.Edit(QStringLiteral("Edit_Schriftgroesse"), _("Größe:"));
    auto* colourRow = new QHBoxLayout;
    swatch_ = new QToolButton(fontGroup->parentWidget());
    swatch_->setObjectName(QStringLiteral("Shape1"));
    auto* chooseFont = new QPushButton(_("Auswahl"), fontGroup->parentWidget());
    chooseFont->setObjectName(QStringLiteral("BT_Schriftart"));
    chooseFont->setAutoDefault(false);
    colourRow->addWidget(new QLabel(_("Farbe:"), fontGroup->parentWidget()));
    colourRow->addWidget(swatch_);
    colourRow->addStretch();
    colourRow->addWidget(chooseFont);
    fontGroup->addLayout(colourRow);

    QVBoxLayout* textGroup = Group(this, Body(), _("Text"));
    text_ = new QLineEdit(textGroup->parentWidget());
    text_->setObjectName(QStringLiteral("DVEdit_Text"));
    textGroup->addWidget(text_);
    formFeed_ = TFormBuilder(this, Body()).Check(QStringLiteral("formfeed"), _("Seitenvorschub"));
    CancelButton()->setObjectName(QStringLiteral("BT_CANCEL"));

    connect(swatch_, &QToolButton::clicked, this, [this] { ChooseColour(); });
    connect(chooseFont, &QPushButton::clicked, this, [this] { ChooseFont(); });
    AttachVariableEditors();
}

void TFRM_TextOut::SetColour(const QString& colourText)
{
    colourText_ = colourText;
    swatch_->setStyleSheet(QStringLiteral("background-color: %1").arg(ToColor(StrToIntDef(colourText, 0)).name()));
}

void TFRM_TextOut::Load(const Fields& f)
{
    text_->setText(f.text);
    font_->setText(f.font);
    size_->setText(f.size);
    style_->setText(f.style);
    SetColour(f.colour);
    formFeed_->setChecked(f.formFeed);
    text_->setFocus();
}

void TFRM_TextOut::Store(Fields& f)
{
    f.text = text_->text();
    f.font = font_->text();
    f.size = size_->text();
    f.style = style_->text();
    f.colour = colourText_;
    f.formFeed = formFeed_->isChecked();
}

void TFRM_TextOut::ChooseColour()
{
    const QColor chosen = QColorDialog::getColor(ToColor(StrToIntDef(colourText_, 0)), this, _("Farbe"));
    if (chosen.isValid()) SetColour(QString::number(ToColourNumber(chosen)));
}

// The font dialog starts from the edits and writes its choice back, the style as rebuilt words.
void TFRM_TextOut::ChooseFont()
{
    QFont initial;
    if (!font_->text().isEmpty()) initial.setFamily(font_->text());
    if (!size_->text().isEmpty()) initial.setPointSize(StrToIntDef(size_->text(), initial.pointSize()));
    const int bits = StyleBits(style_->text());
    initial.setBold(bits & 1);
    initial.setItalic(bits & 2);
    initial.setUnderline(bits & 4);
    initial.setStrikeOut(bits & 8);

    QFontDialog dialog(initial, this);
    dialog.setObjectName(QStringLiteral("FontDialog"));
    if (dialog.exec() != QDialog::Accepted) return;
    const QFont chosen = dialog.selectedFont();
    font_->setText(chosen.family());
    style_->setText(BuildStyleText(chosen.bold(), chosen.italic(), chosen.underline(), chosen.strikeOut()));
    size_->setText(QString::number(chosen.pointSize()));
}

}  // namespace dv
