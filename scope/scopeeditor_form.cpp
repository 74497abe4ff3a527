#include "scope/scopeeditor_form.h"

#include "framework/forms/dvform.h"
#include "framework/services.h"
#include "framework/translate.h"
#include "scope/scopedisplay_form.h"
#include "scope/scopefxparams.h"
#include "scope/scopemodel.h"
#include "scope/scopeview.h"
#include "scope/uscopesource_form.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QEvent>
#include <QEventLoop>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcut>
#include <QSpinBox>
#include <QTabWidget>
#include <QVBoxLayout>

namespace dv::scope {

namespace {

// The function list in the order of TScopeFnc.
constexpr std::array<const char*, kScopeFunctionCount> kFunctionNames{
    "keine Funktion", "Offset (Nulldurchgang)", "Effektivwert", "Mittelwert", "Klirrfaktor", "dB Sinad", "Zeitdifferenz",
    "Peak",           "Phasenverschiebung",     "x/y-Abfrage",  "Differenzkurve", "Kurve begradigen", "Hüllkurve",
    "Lowpass",        "Bandpass",               "Highpass",     "FFT",           "Frequenz",    "Impulszahl", "Tastgrad"};

constexpr std::array<const char*, kColorCount> kColorNames{"Kurve 1", "Kurve 2", "Kurve 3", "Kurve 4",
                                                           "Scope", "Spektrum", "Intensität"};

template <class Widget>
Widget* Named(Widget* w, const QString& name)
{
    w->setObjectName(name);
    return w;
}

// A colour number of the window system (red in the low byte) from a QColor.
int ColorNumber(const QColor& c) { return c.red() | c.green() << 8 | c.blue() << 16; }

// The choice that names the channel: "Kurve:" of the correction and envelope functions.
int ChannelChoice(TScopeFnc function)
{
    const TFxFields fields = FxFields(function);
    for (std::size_t i = 0; i < fields.choices.size(); ++i) {
        if (fields.choices[i].setting == TFxSetting::Channel) return static_cast<int>(i);
    }
    return -1;
}

}  // namespace

TScopeEditPanel::TScopeEditPanel(TScopeDisplay& display, QWidget* parent) : QWidget(parent), display_(display)
{
    setObjectName(QStringLiteral("Panel_Edit"));
    pages_ = Named(new QTabWidget(this), QStringLiteral("PageControl"));
    pages_->addTab(CurvePage(), _("Kurven"));
    pages_->addTab(FunctionPage(), _("Funktion"));
    pages_->addTab(DisplayPage(), _("Anzeige"));
    pages_->addTab(ColorScalePage(), _("Farben / Skalierung"));

    auto* ok = Named(new QPushButton(QStringLiteral("OK"), this), QStringLiteral("BT_OK"));
    auto* cancel = Named(new QPushButton(_("Abbrechen"), this), QStringLiteral("BT_Cancel"));
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(pages_);
    layout->addLayout(buttons);
    connect(ok, &QPushButton::clicked, this, [this] { Finish(TDVForm::mrOk); });
    connect(cancel, &QPushButton::clicked, this, [this] { Finish(TDVForm::mrCancel); });
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, [this] { Finish(TDVForm::mrCancel); });
    connect(pages_, &QTabWidget::currentChanged, this, &TScopeEditPanel::ShowColorsAndScale);

    SetInputParams(TScopeFnc::None);
}

TScopeEditPanel::~TScopeEditPanel() = default;

QWidget* TScopeEditPanel::CurvePage()
{
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    for (int slot = 0; slot < kCurveSlots; ++slot) {
        const QString n = QString::number(slot + 1);
        const auto i = static_cast<std::size_t>(slot);
        curveEnabled_[i] = Named(new QCheckBox(_("Kurve") + ' ' + n, page), "CB_EN_Curve" + n);
        curves_[i] = Named(new QLineEdit(page), "Edit_Curve" + n);
        auto* source = Named(new QPushButton(QStringLiteral(".."), page), "BT_Source" + n);
        source->setToolTip(_("Daten / Ursprung"));
        grid->addWidget(curveEnabled_[i], slot, 0);
        grid->addWidget(curves_[i], slot, 1);
        grid->addWidget(source, slot, 2);
        connect(source, &QPushButton::clicked, this, [this, slot] { EditSource(slot); });
    }
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(kCurveSlots, 1);
    return page;
}

QWidget* TScopeEditPanel::FunctionPage()
{
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    function_ = Named(new QComboBox(page), QStringLiteral("FuncSelect"));
    for (const char* name : kFunctionNames) function_->addItem(_(name));
    form->addRow(_("Funktion:"), function_);
    channel_ = Named(new QSpinBox(page), QStringLiteral("Spin_FxKanal"));
    channel_->setRange(1, kCurveSlots);
    form->addRow(_("Kanal:"), channel_);
    for (std::size_t i = 0; i < edits_.size(); ++i) {
        const QString n = QString::number(i + 1);
        editLabels_[i] = Named(new QLabel(page), "LB_FxParam" + n);
        edits_[i] = Named(new QLineEdit(page), "Edit_FxParam" + n);
        form->addRow(editLabels_[i], edits_[i]);
    }
    for (std::size_t i = 0; i < choices_.size(); ++i) {
        const QString n = QString::number(i + 1);
        choiceLabels_[i] = Named(new QLabel(page), "LB_FxChoice" + n);
        choices_[i] = Named(new QComboBox(page), "CB_FxChoice" + n);
        form->addRow(choiceLabels_[i], choices_[i]);
        // "Kurve:" and the channel spin name the same curve.
        connect(choices_[i], &QComboBox::currentIndexChanged, this, [this, i](int index) {
            if (index >= 0 && ChannelChoice(TScopeFnc(function_->currentIndex())) == static_cast<int>(i)) channel_->setValue(index + 1);
        });
    }
    connect(channel_, &QSpinBox::valueChanged, this, [this](int value) {
        const int choice = ChannelChoice(TScopeFnc(function_->currentIndex()));
        if (choice >= 0) choices_[static_cast<std::size_t>(choice)]->setCurrentIndex(value - 1);
    });
    result_ = Named(new QLineEdit(page), QStringLiteral("Edit_Result"));
    form->addRow(_("Ergebnisvariable:"), result_);
    zoomStart_ = Named(new QLineEdit(page), QStringLiteral("Edit_ZoomStart"));
    form->addRow(_("Zoom Start:"), zoomStart_);
    zoomStop_ = Named(new QLineEdit(page), QStringLiteral("Edit_ZoomStop"));
    form->addRow(_("Zoom Stop:"), zoomStop_);
    connect(function_, &QComboBox::currentIndexChanged, this, [this](int index) { SetInputParams(TScopeFnc(std::max(0, index))); });
    return page;
}

QWidget* TScopeEditPanel::DisplayPage()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    auto* shown = new QButtonGroup(page);
    hide_ = Named(new QRadioButton(_("Scope ausblenden."), page), QStringLiteral("RB_HideScope"));
    keep_ = Named(new QRadioButton(_("Scope belassen."), page), QStringLiteral("RB_KeepScope"));
    show_ = Named(new QRadioButton(_("Scope anzeigen."), page), QStringLiteral("RB_ShowScope"));
    for (QRadioButton* r : {hide_, keep_, show_}) {
        shown->addButton(r);
        layout->addWidget(r);
    }
    show_->setChecked(true);
    clear_ = Named(new QCheckBox(_("Alte Scopedaten löschen."), page), QStringLiteral("CB_ClearData"));
    autoScale_ = Named(new QCheckBox(_("Autoscale"), page), QStringLiteral("CB_AutoScale"));
    prefix_ = Named(new QCheckBox(_("Prefix Modus"), page), QStringLiteral("CB_PrefixMode"));
    wait_ = Named(new QCheckBox(_("Auf Taste >Weiter< warten."), page), QStringLiteral("CB_Wait"));
    waitVar_ = Named(new QLineEdit(page), QStringLiteral("Edit_WaitVar"));
    unitX_ = Named(new QLineEdit(page), QStringLiteral("Edit_UnitX"));
    unitY_ = Named(new QLineEdit(page), QStringLiteral("Edit_UnitY"));
    for (QCheckBox* c : {clear_, autoScale_, prefix_}) layout->addWidget(c);
    auto* form = new QFormLayout;
    form->addRow(wait_, waitVar_);
    form->addRow(_("Einheit X:"), unitX_);
    form->addRow(_("Einheit Y:"), unitY_);
    layout->addLayout(form);
    layout->addStretch();
    // A hidden scope has no "Weiter" to press.
    connect(hide_, &QRadioButton::toggled, this, [this](bool hidden) {
        wait_->setEnabled(!hidden);
        waitVar_->setEnabled(!hidden);
    });
    return page;
}

QWidget* TScopeEditPanel::ColorScalePage()
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    useColors_ = Named(new QCheckBox(_("Farbwerte in Befehlszeile übernehmen."), page), QStringLiteral("CB_SetColor"));
    layout->addWidget(useColors_);
    auto* swatches = new QHBoxLayout;
    for (std::size_t i = 0; i < colors_.size(); ++i) {
        colors_[i] = Named(new QPushButton(_(kColorNames[i]), page), "BT_Color" + QString::number(i + 1));
        swatches->addWidget(colors_[i]);
        connect(colors_[i], &QPushButton::clicked, this, [this, i] { ChooseColor(static_cast<int>(i)); });
    }
    layout->addLayout(swatches);
    useScaling_ = Named(new QCheckBox(_("Skalierungswerte in Befehlszeile übernehmen."), page), QStringLiteral("CB_SetScale"));
    layout->addWidget(useScaling_);
    scaleValues_ = Named(new QLabel(page), QStringLiteral("LB_ScaleValues"));
    layout->addWidget(scaleValues_);
    layout->addStretch();
    return page;
}

void TScopeEditPanel::SetInputParams(TScopeFnc function)
{
    const TFxFields fields = FxFields(function);
    const TFxFieldValues defaults = DefaultFxFieldValues(function);
    for (std::size_t i = 0; i < edits_.size(); ++i) {
        const bool used = i < fields.edits.size();
        editLabels_[i]->setText(used ? fields.edits[i].label : QString());
        edits_[i]->setText(defaults.edits[i]);
        editLabels_[i]->setVisible(used);
        edits_[i]->setVisible(used);
    }
    for (std::size_t i = 0; i < choices_.size(); ++i) {
        const bool used = i < fields.choices.size();
        const QSignalBlocker block(choices_[i]);
        choices_[i]->clear();
        if (used) choices_[i]->addItems(fields.choices[i].items);
        choiceLabels_[i]->setText(used ? fields.choices[i].label : QString());
        choiceLabels_[i]->setVisible(used);
        choices_[i]->setVisible(used);
    }
    const int channelChoice = ChannelChoice(function);
    if (channelChoice >= 0) choices_[static_cast<std::size_t>(channelChoice)]->setCurrentIndex(channel_->value() - 1);
}

void TScopeEditPanel::Fill(const TDecodedSettings& s)
{
    TScopeModel& m = ScopeModel();
    if (s.UseColors) {
        m.Colors = s.ColorValues;
        m.Intensity = s.ColorValues[6] / 65536;
    }
    if (s.UseScaling) m.ApplyScaling(s);
    display_.Refresh();

    channel_->setValue(s.FxChannel.toInt());
    unitX_->setText(s.UnitTextX);
    unitY_->setText(s.UnitTextY);
    autoScale_->setChecked(s.AutoScale);
    prefix_->setChecked(s.PrefixMode);
    wait_->setChecked(s.WaitEnabled);
    waitVar_->setText(s.WaitVar);
    useColors_->setChecked(s.UseColors);
    useScaling_->setChecked(s.UseScaling);
    hide_->setChecked(s.HideScope);
    keep_->setChecked(s.KeepScope);
    // Both or neither: the scope is shown.
    if (s.HideScope == s.KeepScope) show_->setChecked(true);
    wait_->setEnabled(!hide_->isChecked());
    waitVar_->setEnabled(!hide_->isChecked());
    clear_->setChecked(s.ClearData);
    for (std::size_t i = 0; i < curves_.size(); ++i) {
        curveEnabled_[i]->setChecked(!s.CurveSource[i].isEmpty());
        curves_[i]->setText(s.CurveSource[i]);
    }
    function_->setCurrentIndex(static_cast<int>(s.FxFunction));
    SetInputParams(s.FxFunction);
    const TFxFieldValues values = FxFieldValues(s);
    for (std::size_t i = 0; i < edits_.size(); ++i) edits_[i]->setText(values.edits[i]);
    for (std::size_t i = 0; i < choices_.size(); ++i) {
        if (choices_[i]->count() > 0) choices_[i]->setCurrentIndex(values.choices[i]);
    }
    result_->setText(s.ResultVar);
    zoomStart_->setText(s.ClipStart);
    zoomStop_->setText(s.ClipStop);
    ShowColorsAndScale();
}

TDecodedSettings TScopeEditPanel::Settings() const
{
    TDecodedSettings s;
    const TScopeModel& m = ScopeModel();
    s.UseScaling = useScaling_->isChecked();
    s.UseColors = useColors_->isChecked();
    s.HideScope = hide_->isChecked();
    s.KeepScope = keep_->isChecked();
    s.ClearData = clear_->isChecked();
    s.AutoScale = autoScale_->isChecked();
    s.PrefixMode = prefix_->isChecked();
    for (std::size_t i = 0; i < curves_.size(); ++i) s.CurveSource[i] = curveEnabled_[i]->isChecked() ? curves_[i]->text() : QString();
    s.FxFunction = TScopeFnc(std::max(0, function_->currentIndex()));
    s.FxChannel = QString::number(channel_->value());
    TFxFieldValues values;
    for (std::size_t i = 0; i < edits_.size(); ++i) values.edits[i] = edits_[i]->text();
    for (std::size_t i = 0; i < choices_.size(); ++i) values.choices[i] = std::max(0, choices_[i]->currentIndex());
    StoreFxFieldValues(values, s);
    s.ResultVar = result_->text();
    s.ClipStart = zoomStart_->text();
    s.ClipStop = zoomStop_->text();
    s.WaitEnabled = wait_->isChecked();
    s.WaitVar = waitVar_->text();
    s.UnitTextX = unitX_->text();
    s.UnitTextY = unitY_->text();
    s.ColorValues = m.Colors;
    s.ScaleFields[0] = QString::number(m.XDivStep);
    s.ScaleFields[1] = QString::number(m.YDivStep);
    // The pixel zero point as the fractions "[SETSCALE:" writes, offsets 0.
    s.ZeroPosX = double(m.ZeroX - kPlotLeft) / kPlotAreaWidth;
    s.ZeroPosY = double(m.ZeroY) / kPlotAreaHeight;
    return s;
}

void TScopeEditPanel::EditSource(int slot)
{
    const auto i = static_cast<std::size_t>(slot);
    // Whichever button closed the source dialog, its text goes into the slot.
    curves_[i]->setText(TScopeSource::EditSource(curves_[i]->text(), window()));
    curveEnabled_[i]->setChecked(true);
}

void TScopeEditPanel::ChooseColor(int index)
{
    TScopeModel& m = ScopeModel();
    const auto i = static_cast<std::size_t>(index);
    const QColor chosen = QColorDialog::getColor(ColorOf(m.Colors[i]), window(), _(kColorNames[i]));
    if (!chosen.isValid()) return;
    m.Colors[i] = ColorNumber(chosen);
    if (i == m.Colors.size() - 1) m.Intensity = m.Colors[i] / 65536;
    display_.Refresh();
    ShowColorsAndScale();
}

void TScopeEditPanel::ShowColorsAndScale()
{
    const TScopeModel& m = ScopeModel();
    for (std::size_t i = 0; i < colors_.size(); ++i) {
        const QColor c = ColorOf(m.Colors[i]);
        // The caption stays readable on a dark colour.
        colors_[i]->setStyleSheet(QStringLiteral("background-color: %1; color: %2").arg(c.name(), c.lightness() < 128 ? "white" : "black"));
    }
    const auto x = static_cast<std::size_t>(m.XDivStep);
    const auto y = static_cast<std::size_t>(m.YDivStep);
    scaleValues_->setText(Format(_("X: %s, Y: %s, Nullpunkt: %s / %s"),
                                 {DivisionText(XDivisionSteps()[x], m.UnitX.isEmpty() ? QStringLiteral("s") : m.UnitX),
                                  DivisionText(YDivisionSteps()[y], m.UnitY.isEmpty() ? QStringLiteral("V") : m.UnitY),
                                  QString::number(m.ZeroX - kPlotLeft), QString::number(m.ZeroY)}));
}

bool TScopeEditPanel::Exec(QWidget& window)
{
    // The window outlives the host it was built under: each edit offers the variables of the
    // editing host (a line edit drops a completer it owns when it gets a new one).
    if (IDVVarAccess* access = HostServices().varAccess) {
        std::vector<QLineEdit*> named(edits_.begin(), edits_.end());
        named.insert(named.end(), {result_, zoomStart_, zoomStop_, waitVar_, unitX_, unitY_});
        for (QLineEdit* e : named) access->AttachVariableEditor(e);
    }
    QEventLoop loop;
    loop_ = &loop;
    window.installEventFilter(this);
    const int result = loop.exec(QEventLoop::DialogExec);
    window.removeEventFilter(this);
    loop_ = nullptr;
    return result == TDVForm::mrOk;
}

void TScopeEditPanel::Finish(int result)
{
    if (loop_) loop_->exit(result);
}

bool TScopeEditPanel::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Close) Finish(TDVForm::mrCancel);
    return QWidget::eventFilter(watched, event);
}

}  // namespace dv::scope
