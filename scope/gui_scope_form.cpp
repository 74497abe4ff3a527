#include "scope/gui_scope_form.h"

#include "framework/artifacts.h"
#include "framework/systemlog.h"
#include "framework/translate.h"
#include "scope/gui_scope.h"
#include "scope/scopedisplay_form.h"
#include "scope/scopeeditor_form.h"
#include "scope/scopeenvelope_form.h"
#include "scope/scopeformat.h"
#include "scope/scopemodel.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace dv::scope {

namespace {
TFormScope* g_window = nullptr;
constexpr int kBlinkGreen = 32768;
}  // namespace

QFont TFormScope::PlainFont()
{
    QFont f;
    f.setPointSize(8);
    f.setBold(false);
    return f;
}

QFont TFormScope::BlinkFont()
{
    QFont f;
    f.setPointSize(10);
    f.setBold(true);
    return f;
}

QColor TFormScope::BlinkColor() { return ColorOf(kBlinkGreen); }

TFormScope::TFormScope(bool live, QWidget* parent) : QWidget(parent, Qt::Window), live_(live)
{
    setObjectName(QStringLiteral("TFormScope"));
    setWindowTitle(_("Scope"));
    display_ = new TScopeDisplay(this);

    auto* run = new QWidget(this);
    runPanel_ = run;
    run->setObjectName(QStringLiteral("Panel_Run"));
    auto label = [run](const char* name) {
        auto* l = new QLabel(run);
        l->setObjectName(QString::fromLatin1(name));
        return l;
    };
    function_ = label("LB_Function");
    channel_ = label("LB_Channel");
    result_ = label("LB_Result");
    weiter_ = new QPushButton(_("Weiter"), run);
    weiter_->setObjectName(QStringLiteral("BT_Weiter"));
    prefix_ = new QPushButton(_("Prefix"), run);
    prefix_->setObjectName(QStringLiteral("BT_Prefix"));
    prefix_->setCheckable(true);
    envelopeButton_ = new QPushButton(_("Hüllkurve"), run);
    envelopeButton_->setObjectName(QStringLiteral("BT_Huellkurve"));
    envelopeButton_->setCheckable(true);
    auto* row = new QHBoxLayout(run);
    row->addWidget(envelopeButton_);
    row->addWidget(function_);
    row->addWidget(channel_);
    row->addWidget(result_, 1);
    row->addWidget(prefix_);
    row->addWidget(weiter_);

    envelope_ = new TEnvelopePanel(display_->Main(), this);
    envelope_->hide();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(display_);
    layout->addWidget(envelope_);
    layout->addWidget(run);
    editPanel_ = new TScopeEditPanel(*display_, this);
    editPanel_->hide();
    layout->addWidget(editPanel_);
    connect(envelopeButton_, &QPushButton::toggled, this, &TFormScope::ShowEnvelopeTools);
    connect(prefix_, &QPushButton::clicked, this, &TFormScope::SwitchPrefix);

    blink_ = new QTimer(this);
    blink_->setInterval(1000);
    connect(blink_, &QTimer::timeout, this, &TFormScope::Blink);
    connect(weiter_, &QPushButton::clicked, this, &TFormScope::Weiter);
    SetWeiterLook(false);
    weiter_->setEnabled(false);

    SetAfterRunHook([this] { AfterRun(); });
    if (live_) SetScopeDialogs(this);
}

TFormScope::~TFormScope()
{
    if (live_) SetScopeDialogs(nullptr);
    if (g_window == this) g_window = nullptr;
    // A second window (a test's) hands the runs back to the library's window.
    if (g_window) {
        SetAfterRunHook([w = g_window] { w->AfterRun(); });
        if (g_window->live_) SetScopeDialogs(g_window);
    } else {
        SetAfterRunHook({});
    }
}

void TFormScope::AfterRun()
{
    const TScopeModel& m = ScopeModel();
    function_->setText(m.FunctionLabel);
    channel_->setText(m.ChannelLabel);
    result_->setText(m.ResultText);
    prefix_->setChecked(m.PrefixButton);
    display_->Main().SetRunning(m.Running && !envelopeButton_->isChecked());
    display_->Spectrum().SetRunning(m.Running);
    display_->Refresh();
    weiter_->setEnabled(m.WeiterEnabled);
    SetWeiterLook(false);
    if (m.BlinkTimerActive) {
        weiter_->setFocus();
        blink_->start();
    } else {
        blink_->stop();
    }
    if (live_) {
        if (m.Visible) {
            show();
            raise();
        } else {
            hide();
        }
    }
    lastPicture_.clear();
    if (m.Visible) WritePicture();
}

void TFormScope::closeEvent(QCloseEvent* event)
{
    // Closed by the user: a later "[KEEP]" leaves it closed.
    ScopeModel().Visible = false;
    QWidget::closeEvent(event);
}

void TFormScope::SwitchPrefix(bool on)
{
    // The shown result in the other format; the next call's "[PREFIX]" decides again.
    TScopeModel& m = ScopeModel();
    m.PrefixButton = on;
    if (!m.ResultValue) return;
    m.ResultText = ResultText(*m.ResultValue, m.ResultUnit, on);
    result_->setText(m.ResultText);
}

void TFormScope::ShowEnvelopeTools(bool down)
{
    // While the tools are shown, clicks on the main scope edit the envelope instead of measuring.
    envelope_->setVisible(down);
    display_->Main().SetRunning(!down);
}

void TFormScope::WritePicture()
{
    const QString path = NextArtifactPath(QStringLiteral("scope"), QStringLiteral("png"));
    if (path.isEmpty()) return;
    if (!display_->Picture().save(path, "PNG")) {
        SystemLog.Warn(Format(_("Scope: Bild %s kann nicht geschrieben werden"), {path}));
        return;
    }
    lastPicture_ = path;
    AddArtifact(path);
    SystemLog.Debug(Format(_("Scope: Bild %s"), {path}));
}

void TFormScope::SetWeiterLook(bool blinking)
{
    weiter_->setFont(blinking ? BlinkFont() : PlainFont());
    QPalette palette = weiter_->palette();
    palette.setColor(QPalette::ButtonText, blinking ? BlinkColor() : QColor(Qt::black));
    weiter_->setPalette(palette);
}

void TFormScope::Blink()
{
    blinkOn_ = !blinkOn_;
    SetWeiterLook(blinkOn_);
}

void TFormScope::EndWait()
{
    blink_->stop();
    blinkOn_ = false;
    SetWeiterLook(false);
    weiter_->setEnabled(false);
}

void TFormScope::Weiter()
{
    EndWait();
    Scope().Continue();
}

TErrorAnswer TFormScope::ShowExecutionError(const QString& text)
{
    const auto answer = QMessageBox::critical(this, _("Fehler"), text, QMessageBox::Cancel | QMessageBox::Ignore);
    return answer == QMessageBox::Ignore ? TErrorAnswer::Ignore : TErrorAnswer::Cancel;
}

void TFormScope::ShowDecodeError(const QString& text) { QMessageBox::critical(this, _("Fehler"), text, QMessageBox::Ok); }

void TFormScope::ShowCancelError(const QString& text) { QMessageBox::critical(this, _("Fehler"), text, QMessageBox::Cancel); }

void TFormScope::ShowInformation(const QString& text) { QMessageBox::information(this, _("Information"), text); }

void InstallScopeWindow()
{
    if (g_window || !qobject_cast<QApplication*>(QCoreApplication::instance())) return;
    g_window = new TFormScope(QGuiApplication::platformName() != QLatin1String("offscreen"));
    // Widgets must go before the application object does.
    qAddPostRoutine([] { delete g_window; });
}

TFormScope* ScopeWindow() { return g_window; }

}  // namespace dv::scope
