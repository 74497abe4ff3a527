#include "scope/scopeenvelope_form.h"

#include "analysis/curvestore.h"
#include "framework/services.h"
#include "framework/translate.h"
#include "scope/envelopefile.h"
#include "scope/scopedisplay_form.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>
#include <cmath>
#include <optional>

namespace dv::scope {

namespace {

QString AskFile(QWidget* parent, bool save)
{
    QFileDialog dialog(parent, _("Hüllkurve"));
    dialog.setNameFilter(_("Hüllkurve") + QStringLiteral(" (*.HKV)"));
    dialog.setDefaultSuffix(QString::fromLatin1(kEnvelopeExtension));
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return {};
    return dialog.selectedFiles().first();
}

// Asks until the text is a number or the question is cancelled. The separator typed is made to
// match the conversion, which reads a decimal point.
std::optional<double> AskNumber(QWidget* parent, const QString& label)
{
    for (;;) {
        bool ok = false;
        QString text = QInputDialog::getText(parent, _("Punkt setzen."), label, QLineEdit::Normal, {}, &ok);
        if (!ok) return std::nullopt;
        text.replace(',', '.');
        bool number = false;
        const double value = text.trimmed().toDouble(&number);
        // The conversion also takes "nan" and "inf", which no envelope point can be.
        if (number && std::isfinite(value)) return value;
    }
}

// Cancel stops the running test; Ignore goes on.
void AskCancelOrIgnore(QWidget* parent, const QString& text)
{
    if (QMessageBox::critical(parent, _("Fehler"), text, QMessageBox::Cancel | QMessageBox::Ignore) == QMessageBox::Cancel) {
        TestEnvironment().StopTest();
    }
}

}  // namespace

TEnvelopePanel::TEnvelopePanel(TOsci& osci, QWidget* parent) : QWidget(parent), osci_(osci)
{
    setObjectName(QStringLiteral("Panel_HK"));
    ChooseFile = [this](bool save) { return AskFile(this, save); };
    auto button = [this](const char* name, const char* caption) {
        auto* b = new QPushButton(_(caption), this);
        b->setObjectName(QString::fromLatin1(name));
        return b;
    };
    mode_ = button("SB_HK_Mode", "Obere Kurve");
    mode_->setCheckable(true);
    mode_->setChecked(true);
    QPushButton* save = button("SP_HK_Save", "Speichern");
    QPushButton* load = button("BT_Laden", "Laden");
    QPushButton* erase = button("SB_Erase_HK", "Löschen");
    QPushButton* point = button("SB_SetPoint", "Punkt setzen");
    auto* row = new QHBoxLayout(this);
    for (QPushButton* b : {mode_, point, erase, load, save}) row->addWidget(b);

    connect(mode_, &QPushButton::toggled, this,
            [this](bool upper) { mode_->setText(upper ? _("Obere Kurve") : _("Untere Kurve")); });
    connect(save, &QPushButton::clicked, this, &TEnvelopePanel::Save);
    connect(load, &QPushButton::clicked, this, &TEnvelopePanel::Load);
    connect(erase, &QPushButton::clicked, this, &TEnvelopePanel::Erase);
    connect(point, &QPushButton::clicked, this, &TEnvelopePanel::SetPoint);
    connect(&osci_, &TOsci::EnvelopeClick, this, &TEnvelopePanel::OnClick);
}

int TEnvelopePanel::EditEnvelope() const { return mode_->isChecked() ? analysis::kUpperEnvelope : analysis::kLowerEnvelope; }

void TEnvelopePanel::Save()
{
    const QString path = ChooseFile(true);
    if (path.isEmpty()) return;
    try {
        SaveHK(analysis::ScopeStore(), path);
    } catch (const TDravikException& e) {
        AskCancelOrIgnore(this, EnvelopeSaveFaultText(path, e.Message()));
    }
}

void TEnvelopePanel::Load()
{
    const QString path = ChooseFile(false);
    if (!path.isEmpty() && QFileInfo::exists(path)) LoadWithDialogs(path);
}

void TEnvelopePanel::LoadWithDialogs(const QString& fileName)
{
    try {
        LoadHK(analysis::ScopeStore(), fileName);
    } catch (const TEnvelopeFileMissing& e) {
        QMessageBox::critical(this, _("Fehler"), e.Message(), QMessageBox::Cancel);
        TestEnvironment().StopTest();
    } catch (const TDravikException& e) {
        AskCancelOrIgnore(this, EnvelopeLoadFaultText(fileName, e.Message()));
    }
    osci_.update();
}

void TEnvelopePanel::Erase()
{
    if (QMessageBox::question(this, _("Hüllkurve"), _("Hüllkurven löschen ?"), QMessageBox::Yes | QMessageBox::No) != QMessageBox::Yes) {
        return;
    }
    analysis::ScopeStore().Clear(analysis::kUpperEnvelope);
    analysis::ScopeStore().Clear(analysis::kLowerEnvelope);
    osci_.update();
}

void TEnvelopePanel::SetPoint()
{
    const std::optional<double> x = AskNumber(this, _("X-Wert"));
    if (!x) return;
    const std::optional<double> y = AskNumber(this, _("Y-Wert"));
    if (!y) return;
    AddPoint(*x, *y);
}

void TEnvelopePanel::AddPoint(double x, double y)
{
    analysis::TCurveStore& store = analysis::ScopeStore();
    const int handle = EditEnvelope();
    std::vector<double> xs(store.X(handle).begin(), store.X(handle).end());
    std::vector<double> ys(store.Y(handle).begin(), store.Y(handle).end());
    // Envelopes are kept in ascending x; a point at an existing x goes after it.
    const auto at = std::upper_bound(xs.begin(), xs.end(), x) - xs.begin();
    xs.insert(xs.begin() + at, x);
    ys.insert(ys.begin() + at, y);
    store.Assign(handle, std::move(xs), std::move(ys));
    osci_.update();
}

void TEnvelopePanel::DeletePointNear(double x)
{
    analysis::TCurveStore& store = analysis::ScopeStore();
    const int index = GetHKToDelete(store, EditEnvelope(), x);
    if (index < 0) return;
    store.RemoveAt(EditEnvelope(), index);
    osci_.update();
}

void TEnvelopePanel::OnClick(double x, double y, bool add)
{
    if (add) AddPoint(x, y);
    else DeletePointNear(x);
}

}  // namespace dv::scope
