#pragma once
// The host services with the workbench's windows behind them. Each wraps a THost: variables,
// parsing and the run control stay the host's, while status text, text output, the laboratory
// view and a command's stop request also reach the windows. The signals may be emitted on any
// thread; the window receives them queued on the GUI thread.
#include "host/hostservices.h"

#include <QObject>

class QStringListModel;

namespace dv::workbench {

class TGuiServices final : public QObject,
                           public IDVGetParser,
                           public IDVVarAccess,
                           public IDVTestEnvironment {
    Q_OBJECT
public:
    // names: the script's declared variables, shared with every dialog edit box it is attached to.
    TGuiServices(host::THost& host, QStringListModel* names);
    // Makes these the services the commands reach.
    void Install();

    TDVParser* GetParser() override { return host_.GetParser(); }
    void SetVariable(const QString& name, TValuePtr value) override { host_.SetVariable(name, std::move(value)); }
    void AttachVariableEditor(QObject* control) override;
    TDVVariable* FindVariable(const QString& name) override { return host_.FindVariable(name); }
    QString ResolveText(const QString& text) override { return host_.ResolveText(text); }
    void WriteOutput(const QString& text, const QString& fontName, int size, int style, int color) override;
    void SetStatusText(const QString& text) override;
    void StopTest() override;
    TRunControl& GetRunControl() override { return host_.GetRunControl(); }
    void SetLaborVisible(bool show) override;

signals:
    void StatusTextChanged(const QString& text);
    void OutputWritten(const QString& text, const QString& fontName, int size, int style, int color);
    void LaborVisibilityChanged(bool show);
    void TestStopped();

private:
    host::THost& host_;
    QStringListModel* names_;
};

}  // namespace dv::workbench
