// The envelope tools of the scope window through their buttons and dialogs: the panel switch and
// mode, points typed and clicked, the nearest point deleted by a click, erase with its question,
// save and load with their fault dialogs, also of a run's envelope comparison.
#include "analysis/curvestore.h"
#include "scope/envelopefile.h"
#include "scope/gui_scope.h"
#include "scope/gui_scope_form.h"
#include "scope/scopedisplay_form.h"
#include "scope/scopeenvelope_form.h"
#include "scope/scopemodel.h"
#include "tests/scope/formcheck.h"
#include "tests/support/testhost.h"

#include <QDir>
#include <QInputDialog>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

namespace dv::scope {
namespace {

using analysis::kLowerEnvelope;
using analysis::kUpperEnvelope;
using test::Child;
using test::WhenModal;

class EnvelopeTools : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(ScopeWindow(), nullptr);
        Store().Clear(kUpperEnvelope);
        Store().Clear(kLowerEnvelope);
        if (!Button("BT_Huellkurve").isChecked()) Button("BT_Huellkurve").click();
        if (!Button("SB_HK_Mode").isChecked()) Button("SB_HK_Mode").click();
        ScopeModel().ZeroX = 40;
        ScopeModel().ZeroY = 270;
        ScopeModel().XDivStep = 18;  // 1 ms
        ScopeModel().YDivStep = 9;   // 1 V
    }
    void TearDown() override
    {
        if (Button("BT_Huellkurve").isChecked()) Button("BT_Huellkurve").click();
        Panel().ChooseFile = nullptr;
    }
    static analysis::TCurveStore& Store() { return analysis::ScopeStore(); }
    static QPushButton& Button(const char* name) { return Child<QPushButton>(*ScopeWindow(), name); }
    static TEnvelopePanel& Panel() { return ScopeWindow()->Envelope(); }
    static TOsci& Osci() { return ScopeWindow()->Display().Main(); }
    // Answers the next question dialogs with these texts in turn; "<cancel>" cancels. Each
    // question's title and label go to asked.
    static void Answer(QStringList texts)
    {
        WhenModal([texts](QDialog& d) mutable {
            auto& input = dynamic_cast<QInputDialog&>(d);
            asked << input.windowTitle() + " " + input.labelText();
            const QString text = texts.takeFirst();
            if (!texts.isEmpty()) Answer(texts);
            if (text == "<cancel>") return input.reject();
            input.setTextValue(text);
            input.accept();
        });
    }
    void Press(QMessageBox::StandardButton button) { formcheck::Press(button, box); }
    static inline QStringList asked;
    std::vector<double> Xs(int handle) const { return {Store().X(handle).begin(), Store().X(handle).end()}; }

    test::TTestHost host;
    QTemporaryDir dir;
    formcheck::TBoxSeen box;
};

TEST_F(EnvelopeTools, PanelSwitchStopsMeasuringAndModePicksTheEnvelope)
{
    EXPECT_FALSE(Osci().Running());
    EXPECT_EQ(Panel().EditEnvelope(), kUpperEnvelope);
    Button("SB_HK_Mode").click();
    EXPECT_EQ(Panel().EditEnvelope(), kLowerEnvelope);
    Button("BT_Huellkurve").click();
    EXPECT_TRUE(Panel().isHidden());
    EXPECT_TRUE(Osci().Running());
}

TEST_F(EnvelopeTools, ClicksAddInAscendingXAndDeleteTheNearestWithTiesToTheLater)
{
    // 50 pixels per division, 1 ms per division from x = 40: pixel 140 is 2 ms, 240 is 4 ms.
    for (int px : {240, 140, 190}) QTest::mouseClick(&Osci(), Qt::LeftButton, {}, QPoint(px, 170));
    const std::vector<double> added = Xs(kUpperEnvelope);
    ASSERT_EQ(added.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(added[i], 0.002 + 0.001 * static_cast<double>(i), 1e-12);
    EXPECT_NEAR(Store().Y(kUpperEnvelope)[0], 2.0, 1e-12);  // 100 pixels above zero
    QTest::mouseClick(&Osci(), Qt::RightButton, {}, QPoint(50, 300));  // left of all: the first
    EXPECT_EQ(Xs(kUpperEnvelope), (std::vector<double>{added[1], added[2]}));
    QTest::mouseClick(&Osci(), Qt::RightButton, {}, QPoint(900, 300));  // right of all: the last
    EXPECT_EQ(Xs(kUpperEnvelope), (std::vector<double>{added[1]}));
    // Exactly half-way (binary-exact values): the later point goes.
    Store().Clear(kUpperEnvelope);
    Panel().AddPoint(0.5, 0);
    Panel().AddPoint(1.0, 0);
    Panel().DeletePointNear(0.75);
    EXPECT_EQ(Xs(kUpperEnvelope), (std::vector<double>{0.5}));
    Store().Clear(kUpperEnvelope);
    QTest::mouseClick(&Osci(), Qt::RightButton, {}, QPoint(900, 300));  // nothing left to delete
    EXPECT_TRUE(Xs(kUpperEnvelope).empty());
}

TEST_F(EnvelopeTools, TypedPointMatchesTheSeparatorAndAsksAgainOnNonNumbers)
{
    Button("SB_HK_Mode").click();  // lower envelope
    asked.clear();
    // Infinities and "nan" read as numbers by the conversion, but are none: asked again.
    Answer({"nan", "inf", "1,5", "zwei", "-inf", "NaN", "2.25"});
    Button("SB_SetPoint").click();
    EXPECT_EQ(asked, (QStringList{"Punkt setzen. X-Wert", "Punkt setzen. X-Wert", "Punkt setzen. X-Wert", "Punkt setzen. Y-Wert",
                                  "Punkt setzen. Y-Wert", "Punkt setzen. Y-Wert", "Punkt setzen. Y-Wert"}));
    ASSERT_EQ(Store().CurveValuesCount(kLowerEnvelope), 1);
    EXPECT_DOUBLE_EQ(Store().GetValue(kLowerEnvelope, 0).x, 1.5);
    EXPECT_DOUBLE_EQ(Store().GetValue(kLowerEnvelope, 0).y, 2.25);
    Answer({"3", "<cancel>"});
    Button("SB_SetPoint").click();
    Answer({"<cancel>"});
    Button("SB_SetPoint").click();
    EXPECT_EQ(Store().CurveValuesCount(kLowerEnvelope), 1);
}

TEST_F(EnvelopeTools, EraseAsksFirst)
{
    Store().Append(kUpperEnvelope, 1, 1);
    Store().Append(kLowerEnvelope, 1, -1);
    Press(QMessageBox::No);
    Button("SB_Erase_HK").click();
    EXPECT_EQ(box.text, "Hüllkurven löschen ?");
    EXPECT_EQ(Store().CurveValuesCount(kUpperEnvelope), 1);
    Press(QMessageBox::Yes);
    Button("SB_Erase_HK").click();
    EXPECT_EQ(Store().CurveValuesCount(kUpperEnvelope), 0);
    EXPECT_EQ(Store().CurveValuesCount(kLowerEnvelope), 0);
}

TEST_F(EnvelopeTools, SavedEnvelopeLoadsBackAndCancelledDialogsDoNothing)
{
    Store().Append(kUpperEnvelope, 0.5, 1.25);
    Store().Append(kUpperEnvelope, 1.5, -2);
    Store().Append(kLowerEnvelope, 1, -3);
    const QString path = dir.filePath("grenzen.HKV");
    Panel().ChooseFile = [&](bool) { return path; };
    Button("SP_HK_Save").click();
    Store().Clear(kUpperEnvelope);
    Store().Clear(kLowerEnvelope);
    Button("BT_Laden").click();
    EXPECT_EQ(Xs(kUpperEnvelope), (std::vector<double>{0.5, 1.5}));
    EXPECT_EQ(Xs(kLowerEnvelope), (std::vector<double>{1}));
    Panel().ChooseFile = [](bool) { return QString(); };
    Store().Clear(kLowerEnvelope);
    Button("BT_Laden").click();
    EXPECT_EQ(Store().CurveValuesCount(kLowerEnvelope), 0);
    EXPECT_EQ(host.stopCalls, 0);
}

// Saving into a missing folder and loading an unreadable file ask Cancel or Ignore, a missing
// file offers only Cancel; Cancel stops the test, and a failed load keeps the envelopes.
TEST_F(EnvelopeTools, FileFaultsAskAndCancelStopsTheTest)
{
    Store().Append(kUpperEnvelope, 1, 1);
    const QString noFolder = dir.filePath("fehlt/grenzen.HKV"), missing = dir.filePath("weg.HKV"), folder = dir.filePath("ordner.HKV");
    ASSERT_TRUE(QDir().mkpath(folder));  // exists, but cannot be read as a file
    Panel().ChooseFile = [&](bool) { return noFolder; };
    const auto save = [] { Button("SP_HK_Save").click(); };
    const QMessageBox::StandardButtons either = QMessageBox::Cancel | QMessageBox::Ignore;
    struct TRow {
        std::function<void()> act;
        QMessageBox::StandardButton press;
        QString text;  // ending in a line break: how the text begins
        QMessageBox::StandardButtons offered;
        int stopCalls;
    };
    const TRow rows[] = {
        {save, QMessageBox::Ignore, "Scope-Plugin: Fehler beim speichern der Hüllkurvendatei" + noFolder + " !\n", either, 0},
        {save, QMessageBox::Cancel, "Scope-Plugin: Fehler beim speichern der Hüllkurvendatei" + noFolder + " !\n", either, 1},
        {[&] { Panel().LoadWithDialogs(missing); }, QMessageBox::Cancel,
         "Scope-Plugin: Fehler beim Laden der Hüllkurvendatei !\n" + missing + " existiert im agegebenen Pfad nicht !", QMessageBox::Cancel, 2},
        {[&] { Panel().LoadWithDialogs(folder); }, QMessageBox::Ignore, "Scope-Plugin: Fehler beim Laden der Hüllkurvendatei" + folder + " !\n",
         either, 2},
    };
    for (const TRow& r : rows) {
        box = {};
        Press(r.press);
        r.act();
        EXPECT_TRUE(r.text.endsWith('\n') ? box.text.startsWith(r.text) : box.text == r.text) << box.text.toStdString();
        EXPECT_EQ(box.buttons, r.offered) << r.text.toStdString();
        EXPECT_EQ(host.stopCalls, r.stopCalls) << r.text.toStdString();
        EXPECT_EQ(Store().CurveValuesCount(kUpperEnvelope), 1);
    }
}

// The envelope comparison of a run with a missing file: an error box with Cancel only, then the
// test stops.
TEST(ScopeLiveWindow, AMissingEnvelopeFileOffersOnlyCancel)
{
    test::TTestHost host;
    TFormScope live(true);
    formcheck::TBoxSeen box;
    formcheck::Press(QMessageBox::Cancel, box);
    Scope().Command = "[CLR],[HIDE],[FX:ENVELOPE:1],[FILE:/gibt/es/nicht.HKV]";
    Scope().Special.clear();
    Scope().Start();
    EXPECT_EQ(box.buttons, QMessageBox::Cancel);
    EXPECT_EQ(box.text, "Scope-Plugin: Fehler beim Laden der Hüllkurvendatei !\n/gibt/es/nicht.HKV existiert im agegebenen Pfad nicht !");
    EXPECT_EQ(host.stopCalls, 1);
}

}  // namespace
}  // namespace dv::scope
