// The scope editor through its controls: a Scope line opened, changed and written again, the
// cancelled editor, the function page relabelled for every function, the wait box's enabling and
// the source buttons.
#include "framework/forms/dvform.h"
#include "scope/gui_scope.h"
#include "scope/gui_scope_form.h"
#include "scope/scopedisplay_form.h"
#include "scope/scopeeditor_form.h"
#include "scope/scopemodel.h"
#include "tests/commands/formdriver.h"
#include "tests/scope/formcheck.h"
#include "tests/support/testhost.h"

#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>

#include <gtest/gtest.h>

#include <functional>

namespace dv::scope {
namespace {

using formcheck::Shows;
using test::Click;
using test::Find;
using test::OnModal;
using test::Type;

class ScopeEditor : public testing::Test {
protected:
    void SetUp() override
    {
        ASSERT_NE(ScopeWindow(), nullptr);
        // Colours and scaling of earlier tests would otherwise be taken into the lines; an
        // autoscale they left pending is done first.
        ScopeWindow()->Display().Refresh();
        TScopeModel& m = ScopeModel();
        const int autoScaleRuns = m.AutoScaleRuns;
        m = TScopeModel{};
        m.AutoScaleRuns = autoScaleRuns;
    }
    // Opens the editor on the texts through the command; act works the window and closes it.
    bool EditLine(QString& command, QString& special, std::function<void(QWidget&)> act)
    {
        OnModal("TFormScope", std::move(act));
        return cmd.EditCommand(0, 0, special, command);
    }
    // Opens, presses OK at once and returns the written texts.
    std::pair<QString, QString> Reopened(QString command, QString special)
    {
        EXPECT_TRUE(EditLine(command, special, [](QWidget& w) { Click(w, "BT_OK"); }));
        return {command, special};
    }
    // The edit panel of the window, for the controls that need no open editor.
    QWidget& Panel() { return ScopeWindow()->EditPanel(); }
    void Fill(const QString& command) { Scope().DecodeScript(command, "", false); }

    test::TTestHost host;
    TDVCmdScope cmd{&host};
};

TEST_F(ScopeEditor, OpensOnTheLineAndWritesTheChangedField)
{
    QString command = "Scope([CLR],1:[ARRAY:A,FREQ:10],3:[X:T,Y:U],[FX:RMS:3:OFS:0.5:2],[OUT:R],[TX:s]);";
    QString special;
    // As a run may leave it: on top of the workbench.
    ScopeWindow()->setWindowFlag(Qt::WindowStaysOnTopHint, true);
    const bool ok = EditLine(command, special, [](QWidget& w) {
        EXPECT_FALSE(Find<QWidget>(w, "Panel_Edit").isHidden());
        EXPECT_TRUE(Find<QWidget>(w, "Panel_Run").isHidden());
        EXPECT_EQ(Find<QTabWidget>(w, "PageControl").currentIndex(), 0);
        EXPECT_FALSE(w.windowFlags() & Qt::WindowStaysOnTopHint);
        EXPECT_TRUE(Shows(w, {"CB_EN_Curve1=on", "Edit_Curve1=ARRAY:A,FREQ:10", "CB_EN_Curve2=off", "Edit_Curve3=X:T,Y:U",
                              "FuncSelect=Effektivwert", "Spin_FxKanal=3", "Edit_FxParam1=0.5", "CB_FxChoice1=Berücksichtigen",
                              "Edit_Result=R", "Edit_UnitX=s", "CB_ClearData=on", "RB_ShowScope=on"}));
        Type(w, "Edit_Result", "Effektiv");
        Click(w, "CB_AutoScale");
        Click(w, "BT_OK");
    });
    EXPECT_TRUE(ok);
    EXPECT_EQ(command, "Scope([CLR],[AUTO],1:[ARRAY:A,FREQ:10],3:[X:T,Y:U],[FX:RMS:3:OFS:0.5:2],[OUT:Effektiv],[TX:s]);");
    EXPECT_EQ(special, "");
    QStringList offered;
    for (QObject* o : host.attached) offered << o->objectName();
    for (const char* e : {"Edit_FxParam1", "Edit_Result", "Edit_ZoomStart", "Edit_WaitVar", "Edit_UnitY"}) {
        EXPECT_TRUE(offered.contains(e)) << e << " offers no variables";
    }
    EXPECT_TRUE(Find<QWidget>(*ScopeWindow(), "Panel_Edit").isHidden()) << "the run panel is back after editing";
    EXPECT_FALSE(Find<QWidget>(*ScopeWindow(), "Panel_Run").isHidden());
}

// Lines as the editor writes them come back unchanged from an editor closed with OK: every field
// of every function, the display switches and both Special tags pass through the controls.
TEST_F(ScopeEditor, EveryFunctionsLineComesBackUnchanged)
{
    const char* const functions[] = {
        "",
        "[FX:OFFSET:2],",
        "[FX:RMS:3:OFS:Ofs:1],",
        "[FX:MID:1],",
        "[FX:DIST:4],",
        "[FX:SINAD:2:48000:1000:200:3],",
        "[FX:TIMEDIFF:2:1.5:-1:3:1:9],",
        "[FX:PEAK:1:3:2:0.01:Eps],",
        "[FX:PHASESHIFT:2:4:N],",
        "[FX:QUERY:3:2:0.25],",
        "[FX:DIFFCUR:1:S:],",
        "[FX:CURVEPATCH:3:Datei],",
        "[FX:ENVELOPE:2],[FILE:Huelle.HKV],",
        "[FX:LOWPASS:10240:100:4:3],",
        "[FX:BANDPASS:Rate:100:200:2:1],",
        "[FX:HIGHPASS:48000:50:8:4],",
        "[FX:FFT:10240:2]",
        "[FX:FREQ:2:2.5:2.5:1:0],",
        "[FX:IMPULSCOUNT:1:0:1:3:1],",
        "[FX:DUTYCYCLE:4:Y1:Y2:0:1],",
    };
    for (const char* fx : functions) {
        const QString tail = *fx ? QStringLiteral("[OUT:R],[CLIP:0.1:Stop],") : QStringLiteral("[OUT:],");
        const QString command = "Scope([SETSCALE],[SETCOLOR],[HIDE],[CLR],[PREFIX],2:[FILE:\"a b.txt\",SEP:59],4:[ARRAY:A,FREQ:1],"
                                + QString::fromUtf8(fx) + tail + "[WAIT:W],[TX:Einheit],[TY:V]);";
        const QString special = "[SETCOL:0000FF:00FF00:FF0000:123456:000000:010203:FF0000][SETSCALE:12:3:0:0:100:135]";
        EXPECT_EQ(Reopened(command, special), std::make_pair(command, special)) << fx;
    }
    // Keep, wait without a variable, no units, no Special.
    const QString keep = "Scope([KEEP],[AUTO],1:[ADX_DATA:],[FX:MID:2],[OUT:M],[WAIT]);";
    EXPECT_EQ(Reopened(keep, ""), std::make_pair(keep, QString()));
}

TEST_F(ScopeEditor, CancelEscapeAndClosingLeaveBothTexts)
{
    const QString command = "Scope([HIDE],1:[ARRAY:A,FREQ:10],[FX:OFFSET:1],[OUT:R]);";
    const QString special = "[SETSCALE:18:9:0:0:0:270]";
    const std::function<void(QWidget&)> closers[] = {
        [](QWidget& w) { Click(w, "BT_Cancel"); },
        [](QWidget& w) { QTest::keyClick(&w, Qt::Key_Escape); },
        [](QWidget& w) { w.close(); },
    };
    for (const auto& close : closers) {
        QString c = command;
        QString s = special;
        EXPECT_FALSE(EditLine(c, s, [&close](QWidget& w) {
            Type(w, "Edit_Result", "Anders");
            Click(w, "RB_KeepScope");
            Click(w, "CB_SetScale");
            close(w);
        }));
        EXPECT_EQ(c, command);
        EXPECT_EQ(s, special);
        EXPECT_FALSE(ScopeWindow()->isVisible()) << "the editor is closed";
    }
}

// The twenty functions in their order, and the labels and choices each shows, as the editor's
// function table gives them.
TEST_F(ScopeEditor, EveryFunctionRelabelsThePage)
{
    using TChoice = std::pair<QString, QStringList>;
    struct TRow {
        QString function;
        QStringList edits;
        std::vector<TChoice> choices;
    };
    const QStringList curves{"1", "2", "3", "4"};
    const TChoice edgeY1{"Flanke Y1", {"Positiv", "Negativ", "Positiv / Kurvenanfang", "Negativ / Kurvenanfang"}};
    const TChoice edgeY2{"Flanke Y2", {"Positiv", "Negativ"}};
    const TChoice useEdge{"Benutze Flanke", {"1", "2", "3", "4", "5", "6", "7", "8", "9", "10"}};
    const QStringList lowHigh{"Samplerate [Hz]", "Grenzfrequenz [Hz]", "Filterordnung [1-8]"};
    const TRow rows[] = {
        {"keine Funktion", {}, {}},
        {"Offset (Nulldurchgang)", {}, {}},
        {"Effektivwert", {"Offset:"}, {{"Nulldurchgang:", {"Ignorieren", "Berücksichtigen"}}}},
        {"Mittelwert", {}, {}},
        {"Klirrfaktor", {}, {}},
        {"dB Sinad", {"Abtastrate (Hz)", "Nutzsignal (Hz)", "Bandbreite (Hz)"}, {{"FFT-Fenster", {"Square", "Parzen", "Hanning", "Welch", "Hamming"}}}},
        {"Zeitdifferenz", {"Y1", "Y2"}, {edgeY1, edgeY2, useEdge}},
        {"Peak", {"EpsilonX", "EpsilonY"}, {{"Peak", {"Peak Max", "Peak Min", "Peak Min-Max"}}, {"lokale Extrema", {"Ohne", "Mit"}}}},
        {"Phasenverschiebung", {"Anzahl d.Kurvenzüge"}, {{"Kurve 1", curves}, {"Kurve 2", curves}}},
        {"x/y-Abfrage", {"Bezugswert:"}, {{"Suche nach:", {"X", "Y"}}}},
        {"Differenzkurve", {"Skalierung:"}, {}},
        {"Kurve begradigen", {"Korrekturdatei:"}, {{"Kurve:", curves}}},
        {"Hüllkurve", {"Hüllkurvendatei:"}, {{"Kurve:", curves}}},
        {"Lowpass", lowHigh, {}},
        {"Bandpass", {"Samplerate [Hz]", "untere Grenzfrequenz [Hz]", "obere Grenzfrequenz [Hz]", "Filterordnung [1-8]"}, {}},
        {"Highpass", lowHigh, {}},
        {"FFT", {"Samplerate [Hz]"}, {}},
        {"Frequenz", {"Y1", "Y2"}, {edgeY1, edgeY2}},
        {"Impulszahl", {"Y1", "Y2"}, {edgeY1, edgeY2}},
        {"Tastgrad", {"Y1", "Y2"}, {edgeY1, edgeY2}},
    };
    QWidget& page = Panel();
    auto shown = [&page](const char* prefix, int n) {
        QStringList labels;
        for (int i = 1; i <= n; ++i) {
            auto& label = Find<QLabel>(page, (prefix + std::to_string(i)).c_str());
            if (!label.isHidden()) labels << label.text();
        }
        return labels;
    };
    auto& list = Find<QComboBox>(page, "FuncSelect");
    ASSERT_EQ(list.count(), 20);
    // From a function with every field in use, so that leftovers would show.
    list.setCurrentIndex(14);
    for (int f = 0; f < 20; ++f) {
        const TRow& r = rows[f];
        list.setCurrentIndex(f);
        EXPECT_EQ(list.currentText(), r.function);
        EXPECT_EQ(shown("LB_FxParam", 4), r.edits) << f;
        QStringList choiceLabels;
        for (const TChoice& c : r.choices) choiceLabels << c.first;
        EXPECT_EQ(shown("LB_FxChoice", 3), choiceLabels) << f;
        for (std::size_t i = 0; i < 4; ++i) {
            auto& edit = Find<QLineEdit>(page, ("Edit_FxParam" + std::to_string(i + 1)).c_str());
            EXPECT_EQ(edit.isHidden(), i >= static_cast<std::size_t>(r.edits.size())) << f;
        }
        for (std::size_t i = 0; i < r.choices.size(); ++i) {
            auto& box = Find<QComboBox>(page, ("CB_FxChoice" + std::to_string(i + 1)).c_str());
            EXPECT_EQ(formcheck::Items(box), r.choices[i].second) << f << " " << r.choices[i].first.toStdString();
            EXPECT_FALSE(box.isHidden());
        }
    }
    // A filter opens on order 1.
    list.setCurrentIndex(13);
    EXPECT_EQ(Find<QLineEdit>(page, "Edit_FxParam3").text(), "1");
    auto& channel = Find<QSpinBox>(page, "Spin_FxKanal");
    EXPECT_EQ(std::pair(channel.minimum(), channel.maximum()), std::pair(1, 4));
}

// What the choices write: the item index, or the index + 1 where the function counts from 1.
TEST_F(ScopeEditor, ChoicesWriteTheirNumbers)
{
    struct TRow {
        int function;
        std::function<void(QWidget&)> act;
        const char* tag;
    };
    auto choose = [](QWidget& w, const char* box, int index) { Find<QComboBox>(w, box).setCurrentIndex(index); };
    const TRow rows[] = {
        {2, [&](QWidget& w) { choose(w, "CB_FxChoice1", 1); }, "[FX:RMS:1:OFS::2]"},
        {5, [&](QWidget& w) { choose(w, "CB_FxChoice1", 4); }, "[FX:SINAD:1::::4]"},
        {6, [&](QWidget& w) { choose(w, "CB_FxChoice1", 3); choose(w, "CB_FxChoice2", 1); choose(w, "CB_FxChoice3", 9); },
         "[FX:TIMEDIFF:1:::3:1:9]"},
        {7, [&](QWidget& w) { choose(w, "CB_FxChoice1", 2); choose(w, "CB_FxChoice2", 1); }, "[FX:PEAK:1:3:2::]"},
        {8, [&](QWidget& w) { choose(w, "CB_FxChoice1", 1); choose(w, "CB_FxChoice2", 3); }, "[FX:PHASESHIFT:2:4:]"},
        {9, [&](QWidget& w) { choose(w, "CB_FxChoice1", 1); }, "[FX:QUERY:1:2:]"},
        // "Kurve:" and the channel spin are one setting.
        {12, [&](QWidget& w) { choose(w, "CB_FxChoice1", 2); }, "[FX:ENVELOPE:3],[FILE:]"},
        {11, [&](QWidget& w) { Find<QSpinBox>(w, "Spin_FxKanal").setValue(4); }, "[FX:CURVEPATCH:4:]"},
        {17, [&](QWidget& w) { choose(w, "CB_FxChoice1", 2); }, "[FX:FREQ:1:::2:0]"},
    };
    for (const TRow& r : rows) {
        QString command = "Scope([FX:OFFSET:1],[OUT:]);";
        QString special;
        EditLine(command, special, [&r](QWidget& w) {
            Find<QComboBox>(w, "FuncSelect").setCurrentIndex(r.function);
            r.act(w);
            Click(w, "BT_OK");
        });
        EXPECT_TRUE(command.contains(QString::fromUtf8(r.tag))) << command.toStdString() << " lacks " << r.tag;
    }
}

// A choice the list does not hold opens on its first item, and the line then says so.
TEST_F(ScopeEditor, ChoiceOutsideItsListOpensOnTheFirstItem)
{
    EXPECT_EQ(Reopened("Scope([FX:RMS:1:OFS::7],[OUT:]);", "").first, "Scope([FX:RMS:1:OFS::1],[OUT:]);");
    EXPECT_EQ(Reopened("Scope([FX:PEAK:2:x:0::],[OUT:]);", "").first, "Scope([FX:PEAK:2:1:1::],[OUT:]);");
}

TEST_F(ScopeEditor, WaitBoxIsEnabledOnlyWhileTheScopeIsNotHidden)
{
    QWidget& p = Panel();
    struct TRow {
        const char* command;
        const char* checked;
        bool waitEnabled;
    };
    const TRow rows[] = {
        {"[HIDE],[WAIT:W]", "RB_HideScope", false},
        {"[KEEP],[WAIT]", "RB_KeepScope", true},
        {"[WAIT]", "RB_ShowScope", true},
        // Both set: the scope counts as shown.
        {"[HIDE],[KEEP]", "RB_ShowScope", true},
    };
    for (const TRow& r : rows) {
        Fill(r.command);
        EXPECT_TRUE(Find<QRadioButton>(p, r.checked).isChecked()) << r.command;
        EXPECT_EQ(Find<QCheckBox>(p, "CB_Wait").isEnabled(), r.waitEnabled) << r.command;
        EXPECT_EQ(Find<QLineEdit>(p, "Edit_WaitVar").isEnabled(), r.waitEnabled) << r.command;
    }
    Fill("[HIDE],[WAIT:W]");
    EXPECT_TRUE(Shows(p, {"CB_Wait=on", "Edit_WaitVar=W"}));
    Find<QRadioButton>(p, "RB_ShowScope").click();
    EXPECT_TRUE(Find<QCheckBox>(p, "CB_Wait").isEnabled());
    Find<QRadioButton>(p, "RB_HideScope").click();
    EXPECT_FALSE(Find<QCheckBox>(p, "CB_Wait").isEnabled());
}

TEST_F(ScopeEditor, SourceButtonWritesTheDialogsTextBackAndEnablesTheSlot)
{
    QWidget& p = Panel();
    Fill("[CLR]");
    ASSERT_FALSE(Find<QCheckBox>(p, "CB_EN_Curve2").isChecked());
    test::WhenModal([](QDialog& d) {
        EXPECT_EQ(d.objectName(), "TScopeSource");
        Find<QRadioButton>(d, "RB_Array").click();
        Find<QLineEdit>(d, "Edit_Array").setText("U");
        Find<QLineEdit>(d, "Edit_Array_Y").setText("5");
        Find<QPushButton>(d, "BT_OK").click();
    });
    Find<QPushButton>(p, "BT_Source2").click();
    // Only the button's own slot is enabled.
    EXPECT_TRUE(Shows(p, {"Edit_Curve2=ARRAY:U,FREQ:5", "CB_EN_Curve2=on", "CB_EN_Curve1=off"}));

    // "Abbrechen" also writes back: the source as the dialog read it, in upper case and without
    // its modifiers.
    Find<QLineEdit>(p, "Edit_Curve4").setText("array:a,FREQ:1000,NAME:u1");
    test::WhenModal([](QDialog& d) { Find<QPushButton>(d, "BT_Cancel").click(); });
    Find<QPushButton>(p, "BT_Source4").click();
    EXPECT_TRUE(Shows(p, {"Edit_Curve4=ARRAY:A,FREQ:1000", "CB_EN_Curve4=on"}));
}

TEST_F(ScopeEditor, ColourAndScalingBoxesTakeWhatTheScopeShows)
{
    QString command = "Scope([FX:MID:1],[OUT:]);";
    QString special;
    EditLine(command, special, [](QWidget& w) {
        // The division selectors of the window itself.
        Find<QComboBox>(w, "CB_XDiv").setCurrentIndex(20);
        Find<QComboBox>(w, "CB_YDiv").setCurrentIndex(4);
        Find<QTabWidget>(w, "PageControl").setCurrentIndex(3);
        EXPECT_EQ(Find<QLabel>(w, "LB_ScaleValues").text(), "X: 5 ms/Div, Y: 20 mV/Div, Nullpunkt: 0 / 270");
        Click(w, "CB_SetScale");
        Click(w, "CB_SetColor");
        Click(w, "BT_OK");
    });
    EXPECT_EQ(command, "Scope([SETSCALE],[SETCOLOR],[FX:MID:1],[OUT:]);");
    EXPECT_EQ(special, "[SETCOL:00FFFF:00FF00:FFFF00:FF00FF:000000:000000:FF0000][SETSCALE:20:4:0:0:0:270]");
}

// A line that cannot be decoded opens with what was read before the fault, and the fault is
// reported as in a run.
TEST_F(ScopeEditor, FaultyLineOpensWithWhatWasReadBeforeTheFault)
{
    Fill("[KEEP],1:[ARRAY:A,FREQ:1],[FX:PEAK:x:1:1::],[OUT:P]");
    EXPECT_EQ(host.stopCalls, 1);
    // The result variable comes after the fault.
    EXPECT_TRUE(Shows(Panel(), {"RB_KeepScope=on", "Edit_Curve1=ARRAY:A,FREQ:1", "FuncSelect=Peak", "Edit_Result="}));
}

}  // namespace
}  // namespace dv::scope
