#include "commands/text/gui_stringbearbeitung_form.h"

#include "framework/catalogue.h"
#include "framework/exceptions.h"
#include "framework/forms/formbuilder.h"
#include "framework/translate.h"

#include <QAbstractButton>
#include <QBoxLayout>
#include <QButtonGroup>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <vector>

namespace dv {

namespace {

enum { kCutId = 1, kDeleteId = 0 };

void Check(QButtonGroup* group, int id)
{
    if (QAbstractButton* button = group->button(id)) {
        button->setChecked(true);
        return;
    }
    // No button of that id: none is checked.
    group->setExclusive(false);
    for (QAbstractButton* button : group->buttons()) button->setChecked(false);
    group->setExclusive(true);
}

}  // namespace

TStringBearbeitung::TStringBearbeitung(TDVCmdStringConversion& command)
    : TCommandForm(command, QStringLiteral("TStringBearbeitung"), _("String-Bearbeitung"),
                   FindCommandClass(QStringLiteral("TDVCmdStringConversion"))->helpContext)
{
    TFormBuilder form(this, Body());
    input_ = form.Edit(QStringLiteral("Edit_Eingang"), _("Eingang:"));
    output_ = form.Edit(QStringLiteral("Edit_Ausgang"), _("Ausgang:"));
    upperCase_ = form.Check(QStringLiteral("cb_Uppercase"), _("Konvertiere String in Großbuchstaben"));
    searchFlag_ = form.Check(QStringLiteral("CB_Pos"), _("Position"));
    search_ = form.Edit(QStringLiteral("Edit_PosSuchstring"), _("Suchstring:"));
    strLen_ = form.Check(QStringLiteral("CB_Length"), _("Länge"));
    fragment_ = form.Check(QStringLiteral("CB_Fragment"), _("Fragment"));
    BuildFragmentPanel();

    TFormBuilder rest(this, Body());
    segment_ = rest.Check(QStringLiteral("CB_Seg"), _("Segment"));
    separator_ = rest.Edit(QStringLiteral("Edit_Separator"), _("Separator:"));
    part_ = rest.Edit(QStringLiteral("Edit_Spin_Teil"), _("x.Teil:"), QStringLiteral("0"));
    convert_ = rest.Check(QStringLiteral("CB_MATHE"), _("Umwandeln in Zahl"));
    round_ = rest.Check(QStringLiteral("CB_Round"), _("Runden"));
    trim_ = rest.Check(QStringLiteral("CB_Trim"), _("Leerzeichen löschen"));
    BuildTrimPanel();

    TFormBuilder tail(this, Body());
    replace_ = tail.Check(QStringLiteral("CB_Ersetzen"), _("Ersetze ab Position "));
    replacePos_ = tail.Edit(QStringLiteral("Edit_Ersetze_Pos"), QString());
    replaceWith_ = tail.Edit(QStringLiteral("Edit_Ersetze_durch"), _("mit"));
    countFlag_ = tail.Check(QStringLiteral("cb_CountofChar"), _("Anzahl von Zeichen"));
    count_ = tail.Edit(QStringLiteral("Edit_CountOfChar"), QString());
    result_ = tail.Label(QString(), QStringLiteral("LB_Ergebnis"));

    auto* test = new QPushButton(_("Test"), this);
    test->setObjectName(QStringLiteral("BT_Test"));
    test->setAutoDefault(false);
    ButtonRow()->insertWidget(0, test);
    connect(test, &QPushButton::clicked, this, [this] { ShowTestResult(); });

    for (QCheckBox* box : {searchFlag_, fragment_, segment_, trim_, replace_}) {
        connect(box, &QCheckBox::toggled, this, [this] { UpdateEnabling(); });
    }
    AttachVariableEditors();
}

void TStringBearbeitung::BuildFragmentPanel()
{
    fragmentPanel_ = new QWidget(this);
    fragmentPanel_->setObjectName(QStringLiteral("Panel_Fragment"));
    auto* layout = new QVBoxLayout(fragmentPanel_);
    Body()->addWidget(fragmentPanel_);
    TFormBuilder panel(fragmentPanel_, layout);
    cut_ = panel.Radios(QString(), {QStringLiteral("RB_CUT"), QStringLiteral("RB_Del")},
                        {_("Ausschneiden"), _("Löschen")}, {kCutId, kDeleteId});
    anchor_ = panel.RadiosOf(QString(), FragPositions(), [](const TFragPositionRow& row) {
        return TFormBuilder::TRadio{row.control, row.caption, static_cast<int>(row.value)};
    });
    pos_ = panel.Edit(QStringLiteral("Edit_Position"), _("Pos:"), QStringLiteral("0"));
    length_ = panel.Edit(QStringLiteral("Edit_Laenge"), _("Länge:"), QStringLiteral("0"));
}

void TStringBearbeitung::BuildTrimPanel()
{
    trimPanel_ = new QWidget(this);
    trimPanel_->setObjectName(QStringLiteral("Panel_Trim"));
    auto* layout = new QVBoxLayout(trimPanel_);
    Body()->addWidget(trimPanel_);
    trimMode_ = TFormBuilder(trimPanel_, layout).RadiosOf(QString(), TrimModes(), [](const TTrimModeRow& row) {
        return TFormBuilder::TRadio{row.control, row.caption, row.code};
    });
}

void TStringBearbeitung::UpdateEnabling()
{
    search_->setEnabled(searchFlag_->isChecked());
    fragmentPanel_->setEnabled(fragment_->isChecked());
    separator_->setEnabled(segment_->isChecked());
    part_->setEnabled(segment_->isChecked());
    trimPanel_->setEnabled(trim_->isChecked());
    replacePos_->setEnabled(replace_->isChecked());
    replaceWith_->setEnabled(replace_->isChecked());
}

void TStringBearbeitung::Load(const Fields& f)
{
    input_->setText(f.input);
    output_->setText(f.output);
    upperCase_->setChecked(f.upperCase);
    searchFlag_->setChecked(f.searchFlag);
    search_->setText(f.search);
    strLen_->setChecked(f.strLen);
    fragment_->setChecked(f.fragment);
    Check(cut_, f.cut ? kCutId : kDeleteId);
    Check(anchor_, static_cast<int>(f.fragPos));
    pos_->setText(f.pos);
    length_->setText(f.length);
    segment_->setChecked(f.segment);
    separator_->setText(f.separator);
    part_->setText(f.part);
    convert_->setChecked(f.convert);
    round_->setChecked(f.round);
    trim_->setChecked(f.trim);
    Check(trimMode_, f.trimMode);
    replace_->setChecked(f.replace);
    replacePos_->setText(f.replacePos);
    replaceWith_->setText(f.replaceWith);
    countFlag_->setChecked(f.countFlag);
    count_->setText(f.count);
    result_->clear();
    UpdateEnabling();
    input_->setFocus();
}

void TStringBearbeitung::Store(Fields& f)
{
    f.input = input_->text();
    f.output = output_->text();
    f.upperCase = upperCase_->isChecked();
    f.searchFlag = searchFlag_->isChecked();
    f.search = search_->text();
    f.strLen = strLen_->isChecked();
    f.fragment = fragment_->isChecked();
    f.cut = cut_->checkedId() == kCutId;
    f.fragPos = anchor_->checkedId() < 0 ? TFragPosition::fpLeft : static_cast<TFragPosition>(anchor_->checkedId());
    f.pos = pos_->text();
    f.length = length_->text();
    f.segment = segment_->isChecked();
    f.separator = separator_->text();
    f.part = part_->text();
    f.convert = convert_->isChecked();
    f.round = round_->isChecked();
    f.trim = trim_->isChecked();
    f.trimMode = trimMode_->checkedId() < 0 ? 0 : trimMode_->checkedId();
    f.replace = replace_->isChecked();
    f.replacePos = replacePos_->text();
    f.replaceWith = replaceWith_->text();
    // The count text is the flag in the script line: unchecked, nothing is counted.
    f.countFlag = countFlag_->isChecked();
    f.count = f.countFlag ? count_->text() : QString();
}

// Runs the steps on what the dialog shows now; writes no variable and leaves the fields alone.
void TStringBearbeitung::ShowTestResult()
{
    Fields current = edited_;
    Store(current);
    QString text;
    try {
        text = TDVCmdStringConversion::Process(current).text;
    } catch (const TDravikException& e) {
        text = e.Message();
    }
    result_->setText(Format(_("Ergebnis = %s"), {text}));
}

}  // namespace dv
