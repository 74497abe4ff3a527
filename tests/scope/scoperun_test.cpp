// Scope calls whose run goes wrong or whose result is shown: faults reach the scope's error dialog
// (headless: the log and StopTest), and each function shows its label, channel and unit.
#include "analysis/curvestore.h"
#include "framework/headless.h"
#include "framework/systemlog.h"
#include "scope/gui_scope.h"
#include "scope/scopemodel.h"
#include "tests/host/scriptrun.h"
#include "tests/support/testhost.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <stdexcept>

namespace dv::scope {
namespace {

using host::test::RunScriptText;
using host::test::TScriptOutcome;

class ScopeRunFaults : public testing::Test {
protected:
    void SetUp() override { SystemLog.SetSink([this](const QString&, const QString& text) { warnings << text; }); }
    void TearDown() override { SystemLog.SetSink({}); }
    QString Logged() const { return warnings.join('\n'); }
    QStringList warnings;
    QTemporaryDir dir;
};

// A host whose variable access fails as no script error does.
class TFailingHost final : public test::TTestHost {
public:
    QString ResolveText(const QString& text) override
    {
        if (text == QLatin1String("kaputt")) throw std::length_error("vector::_M_realloc_insert");
        return TTestHost::ResolveText(text);
    }
};

TEST_F(ScopeRunFaults, AnyOtherFaultOfTheRunIsAnExecutionFault)
{
    TFailingHost host;
    Scope().Command = "[HIDE],[TX:kaputt]";
    Scope().Special.clear();
    Scope().Start();
    EXPECT_EQ(host.stopCalls, 1);
    EXPECT_EQ(Logged(), "Scope-Plugin: Fehler bei der Befehlsausführung !\nvector::_M_realloc_insert (Abbrechen)");
}

TEST_F(ScopeRunFaults, AFileSourceThatIsNoFileIsReportedAtOnce)
{
    const QString fifo = dir.filePath("pipe");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    for (const QString& path : {fifo, dir.path(), QString("/dev/zero")}) {
        warnings.clear();
        const TScriptOutcome out = RunScriptText("Scope(\"[HIDE],1:[FILE:" + path + ",SEP:59]\", \"\");\nLog(\"danach\");");
        EXPECT_EQ(out.exitCode, 1) << path.toStdString();
        EXPECT_TRUE(out.output.isEmpty());
        EXPECT_TRUE(Logged().contains("Scope-Plugin: Fehler bei der Kurvendarstellung !\nDie Kurvendatei " + path +
                                      " ist keine gewöhnliche Datei"))
            << Logged().toStdString();
    }
}

}  // namespace
}  // namespace dv::scope
