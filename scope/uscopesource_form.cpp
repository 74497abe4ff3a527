#include "scope/uscopesource_form.h"

#include "framework/services.h"
#include "framework/translate.h"
#include "framework/typeconversion.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <array>

namespace dv::scope {

namespace {

// The kinds of source, told apart by the button's id. The button's tag decides which fields a
// choice enables: the file's fields for tag 0, the array's for 1, the point's for 2, the image's
// for 4. The recording's button has no tag of its own and so keeps the default 0: choosing it
// enables the file fields, which it does not use.
enum TKind { kFile = 0, kArray = 1, kPoint = 2, kAdx = 3, kImage = 4 };

struct TKindRow {
    const char* objectName;
    const char* caption;
    TKind id;
    int tag;
};
constexpr std::array<TKindRow, 5> kKinds{{{"RB_File", "Datei", kFile, 0},
                                          {"RB_Array", "Array", kArray, 1},
                                          {"RB_Point", "Punkt", kPoint, 2},
                                          {"RB_ADX", "ADX Aufzeichnung", kAdx, 0},
                                          {"RB_Image", "Interner Bild-Puffer", kImage, 4}}};

// The text between start and the next stop after it; to the end when stop is missing.
QString Between(const QString& text, const QString& start, const QString& stop)
{
    const qsizetype from = text.indexOf(start);
    if (from < 0) return {};
    const qsizetype begin = from + start.size();
    const qsizetype end = stop.isEmpty() ? -1 : text.indexOf(stop, begin);
    return end < 0 ? text.mid(begin) : text.mid(begin, end - begin);
}

QString After(const QString& text, const QString& marker) { return Between(text, marker, {}); }

}  // namespace

TScopeSource::TScopeSource(QWidget* parent) : TDVForm(QStringLiteral("TScopeSource"), _("Daten / Ursprung"), kHelpContext, parent)
{
    kinds_ = new QButtonGroup(this);
    auto* form = new QFormLayout;
    Body()->addLayout(form);
    auto edit = [this](const char* name) {
        auto* e = new QLineEdit(this);
        e->setObjectName(QString::fromLatin1(name));
        return e;
    };
    auto radio = [this, form](const TKindRow& row) {
        auto* r = new QRadioButton(_(row.caption), this);
        r->setObjectName(QString::fromLatin1(row.objectName));
        r->setProperty("tag", row.tag);
        kinds_->addButton(r, row.id);
        form->addRow(r);
    };
    radio(kKinds[0]);
    file_ = edit("Edit_File");
    auto* browse = new QPushButton(QStringLiteral(".."), this);
    browse->setObjectName(QStringLiteral("BT_File"));
    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(file_);
    fileRow->addWidget(browse);
    form->addRow(_("Dateiname:"), fileRow);
    separator_ = edit("Edit_Separator");
    separator_->setMaxLength(1);
    separator_->setText(QStringLiteral("|"));
    form->addRow(_("Separator"), separator_);
    radio(kKinds[1]);
    array_ = edit("Edit_Array");
    form->addRow(_("Array-Variable:"), array_);
    arrayFreq_ = edit("Edit_Array_Y");
    form->addRow(_("Frequenz:"), arrayFreq_);
    radio(kKinds[2]);
    x_ = edit("Edit_X");
    form->addRow(_("X-Variable:"), x_);
    y_ = edit("Edit_y");
    form->addRow(_("Y-Variable:"), y_);
    radio(kKinds[3]);
    radio(kKinds[4]);
    rowCol_ = new QComboBox(this);
    rowCol_->setObjectName(QStringLiteral("CB_RowCol"));
    rowCol_->addItems({_("Zeile:"), _("Spalte:")});
    channel_ = new QComboBox(this);
    channel_->setObjectName(QStringLiteral("CB_Channel"));
    channel_->addItems({_("Rot-Kanal"), _("Grün-Kanal"), _("Blau-Kanal")});
    imageN_ = edit("Edit_Image_N");
    auto* imageRow = new QHBoxLayout;
    imageRow->addWidget(channel_);
    imageRow->addWidget(rowCol_);
    imageRow->addWidget(imageN_);
    form->addRow(imageRow);
    imageFreq_ = edit("Edit_Image_Freq");
    form->addRow(_("Frequenz:"), imageFreq_);
    offsetX_ = edit("Edit_OffsetX");
    form->addRow(_("Offset X:"), offsetX_);
    offsetY_ = edit("Edit_OffsetY");
    form->addRow(_("Offset Y:"), offsetY_);
    mx_ = edit("Edit_Mx");
    form->addRow(_("Faktor X:"), mx_);
    my_ = edit("Edit_My");
    form->addRow(_("Faktor Y:"), my_);
    name_ = edit("Edit_Name");
    form->addRow(_("Name:"), name_);

    connect(kinds_, &QButtonGroup::idClicked, this, &TScopeSource::Choose);
    connect(browse, &QPushButton::clicked, this, [this] {
        const QString path = QFileDialog::getOpenFileName(this, _("Dateiname:"));
        if (!path.isEmpty()) file_->setText('"' + path + '"');
    });
    if (IDVVarAccess* access = HostServices().varAccess) {
        for (QLineEdit* e : {file_, array_, x_, y_, arrayFreq_, separator_, offsetX_, offsetY_, mx_, my_}) access->AttachVariableEditor(e);
    }
}

void TScopeSource::Choose(int kind)
{
    const int tag = kKinds[static_cast<std::size_t>(kind)].tag;
    for (QWidget* w : {static_cast<QWidget*>(file_), static_cast<QWidget*>(separator_)}) w->setEnabled(tag == kFile);
    for (QWidget* w : {array_, arrayFreq_}) w->setEnabled(tag == kArray);
    for (QWidget* w : {x_, y_}) w->setEnabled(tag == kPoint);
    for (QWidget* w : {static_cast<QWidget*>(rowCol_), static_cast<QWidget*>(channel_), static_cast<QWidget*>(imageN_),
                       static_cast<QWidget*>(imageFreq_)}) {
        w->setEnabled(tag == kImage);
    }
    if (QAbstractButton* b = kinds_->button(kind)) b->setChecked(true);
}

void TScopeSource::LoadFields()
{
    if (Source.isEmpty()) {
        Choose(kArray);
        return;
    }
    Source = Source.toUpper();
    // Modifiers are cut from the end in the reverse of the order they are written in.
    auto cut = [this](const QString& marker) { Source.truncate(Source.indexOf(marker)); };
    if (Source.contains(QLatin1String(",NAME:"))) {
        name_->setText(After(Source, QStringLiteral(",NAME:")));
        cut(QStringLiteral(",NAME:"));
    }
    if (Source.contains(QLatin1String(",FAKX:"))) {
        mx_->setText(Between(Source, QStringLiteral(",FAKX:"), QStringLiteral(":")));
        my_->setText(After(Source, QStringLiteral(":FAKY:")));
        cut(QStringLiteral(",FAKX:"));
    }
    if (Source.contains(QLatin1String(",OFX:"))) {
        offsetX_->setText(Between(Source, QStringLiteral(",OFX:"), QStringLiteral(":")));
        offsetY_->setText(After(Source, QStringLiteral(":OFY:")));
        cut(QStringLiteral(",OFX:"));
    }
    if (Source.contains(QLatin1String("FILE:"))) {
        file_->setText(Between(Source, QStringLiteral("FILE:"), QStringLiteral(",")));
        const QString code = After(Source, QStringLiteral(",SEP:"));
        bool ok = false;
        const int value = code.toInt(&ok);
        separator_->setText(ok ? QString(Chr1252(value)) : QString());
        Choose(kFile);
    } else if (Source.contains(QLatin1String("ARRAY:"))) {
        array_->setText(Between(Source, QStringLiteral("ARRAY:"), QStringLiteral(",")));
        arrayFreq_->setText(After(Source, QStringLiteral(",FREQ:")));
        Choose(kArray);
    } else if (Source.contains(QLatin1String("X:"))) {
        x_->setText(Between(Source, QStringLiteral("X:"), QStringLiteral(",")));
        y_->setText(After(Source, QStringLiteral(",Y:")));
        Choose(kPoint);
    } else if (Source.contains(QLatin1String("ADX_DATA:"))) {
        Choose(kAdx);
    } else if (Source.contains(QLatin1String("IMAGE-"))) {
        channel_->setCurrentIndex(Source.contains(QLatin1String("-R-")) ? 0 : Source.contains(QLatin1String("-G-")) ? 1 : 2);
        rowCol_->setCurrentIndex(Source.contains(QLatin1String("-L:")) ? 0 : 1);
        imageN_->setText(Between(Source, QStringLiteral(":"), QStringLiteral(",")));
        imageFreq_->setText(After(Source, QStringLiteral(",FREQ:")));
        Choose(kImage);
    }
}

void TScopeSource::StoreFields()
{
    const int kind = kinds_->checkedId();
    if (kind == kFile && !file_->text().isEmpty()) {
        const QString sep = separator_->text();
        Source = "FILE:" + file_->text() + ",SEP:" + (sep.isEmpty() ? QString() : QString::number(Ord1252(sep[0])));
    } else if (kind == kArray && !array_->text().isEmpty()) {
        Source = "ARRAY:" + array_->text() + ",FREQ:" + arrayFreq_->text();
    } else if (kind == kPoint && !x_->text().isEmpty() && !y_->text().isEmpty()) {
        Source = "X:" + x_->text() + ",Y:" + y_->text();
    } else if (kind == kAdx) {
        Source = QStringLiteral("ADX_DATA:");
    } else if (kind == kImage && !imageN_->text().isEmpty()) {
        static const char* const kChannels[] = {"R", "G", "B"};
        Source = QStringLiteral("IMAGE-") + QLatin1String(kChannels[std::max(0, channel_->currentIndex())]) +
                 (rowCol_->currentIndex() == 0 ? "-L:" : "-C:") + imageN_->text() + ",FREQ:" + imageFreq_->text();
    }
    if (!offsetX_->text().isEmpty() || !offsetY_->text().isEmpty()) Source += ",OFX:" + offsetX_->text() + ":OFY:" + offsetY_->text();
    if (!mx_->text().isEmpty() || !my_->text().isEmpty()) Source += ",FAKX:" + mx_->text() + ":FAKY:" + my_->text();
    if (!name_->text().isEmpty()) Source += ",NAME:" + name_->text();
}

QString TScopeSource::EditSource(const QString& text, QWidget* parent)
{
    TScopeSource dialog(parent);
    dialog.Source = text;
    dialog.ShowModal();
    return dialog.Source;
}

}  // namespace dv::scope
