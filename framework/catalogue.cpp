#include "framework/catalogue.h"

#include <array>

namespace dv {

namespace {

using enum TBaseKind;
using enum TSubsystem;

// clang-format off
constexpr std::array<TCatalogueRow, 27> kCatalogue{{
    {"ArrayToStr", "procedure ArrayToStr(var Str : string; Arr : array of misc);",
     "TDVCmdArrayToString", Func, "TFRM_ArrayToString", 206, Text},
    {"StrToArray", "procedure StrToArray(str : string; var arr : array of misc);",
     "TDVCmdStringToArray", Func, "TFRM_StringIntoArrayString", 208, Text},
    {"StringBearbeitung", "procedure StringBearbeitung(Separator : string = ;Search : string = ; Input : string; var Output : string; UpperCase : Boolean; StrLen : Boolean; Fragment : Boolean; Cut : Boolean; Pos : Number = ; Length : Number = 0; FragPos : string; Segment : Boolean; Part : Number; Convert : Number; Round : Boolean; Trim : Boolean; TrimMode : Number; ReplaceWith : string = ; ReplacePos : Number = 0; Replace : Boolean; Count : Boolean = );",
     "TDVCmdStringConversion", Func, "TStringBearbeitung", 207, Text},
    {"NumberConvert", "procedure NumberConvert(Operation : string; Input : misc; var Output : Number; Stellen : Number);",
     "TDVCmdNumberConversion", Func, "TZahlenkonverter", 209, Text},
    {"TextOut", "procedure TextOut(Text : Misc; Font : string = \"\"; FontSize : Number = 10; FontColor : Number = 0; FontStyle : String = \"\"; FormFeed : Boolean = False);",
     "TDVCmdTextOut", Func, "TFRM_TextOut", 105, Dialogs},
    {"StatusText", "procedure StatusText(Text : string);",
     "TDVCmdStatusBar", Func, "TStatusleiste", 106, Dialogs},
    {"OpenSaveDlg", "procedure OpenSaveDlg(OpenDlg : Boolean; var FileName : string = ; InitDir : string = ; Caption : string = ; Extension : string =  );",
     "TDVCmdOpenSave", Func, "TFRM_OpenSave", 123, Dialogs},
    {"MeldungsBox", "procedure MeldungsBox(Position : Boolean; Text : string; Type : String; Buttons : string; XPos : Number; YPos : Number)",
     "TDVCmdMeldungsBox", Func, "TMeldungsbox", 105, Dialogs},
    {"Exec", "procedure Exec(ExePath : string; Params : string = ; WorkDir : string = ; var Return : Number = ; TimeOut : Number = 0; Hide : Boolean = False; Delay : Number = 0; Minimized : Boolean = False; Kill : Boolean = False);",
     "TDVCmdStartEXE", Thread, "TStartEXE", 177, System},
    {"SysUtils", "procedure SysUtils(Command : String; FileName : string; var Result : Misc = ; Target : string =);",
     "TDVCmdSystemUtilities", Func, "TSystemUtilities", 182, System},
    {"IniFile", "procedure IniFile(FileName : string; Section : string; Ident : string = \"\" ; Value : string = \"\"; var Result : Misc = ; Mode : Number);",
     "TDVCmdIniFiles", Func, "TIni_Files", 179, System},
    {"CallNamedPipe", "procedure CallNamedPipe(Name: String; Call: String; var Result: String);",
     "TDVCmdCallNamedPipe", Thread, "TFormCallNamedPipe", 191, System},
    {"TCP", "procedure TCP(Host: String; Port: Number; Send: String; Sentinel: String = [10]; var Result: String);",
     "TDVCmdTCP", Thread, "TFormTCP", 0, System},
    {"FormShow", "procedure FormShow(File: String; Fullscreen: Boolean = false);",
     "TDVCmdFormShow", Func, "TFormFormShow", 194, Dialogs},
    {"FormResult", "procedure FormResult(Close: Boolean = true; Timeout: Number = -1; var Result: String = ; Unpack: Boolean = false);",
     "TDVCmdFormResult", Thread, "TFormFormResult", 195, Dialogs},
    {"ImageEval", "procedure ImageEval(var Result: Number; File: String; Rect: Array of Number = []; Displacement: Number = 0; Coverage: Boolean = false; Compare: Boolean = false; CompareMax: Boolean = false);",
     "TDVCmdImageEvaluation", Func, "TFormImageEvaluation", 112, Image},
    {"ImageCapture", "procedure ImageCapture(Device: String; Exposure: Number; WhiteBalance: Number);",
     "TDVCmdImageCapture", Func, "TFormImageCapture", 110, Image},
    {"ImageSave", "procedure ImageSave(File: String);",
     "TDVCmdImageSave", Func, "TFormImageSave", 113, Image},
    {"ImageLoad", "procedure ImageLoad(File: String);",
     "TDVCmdImageLoad", Func, "TFormImageLoad", 109, Image},
    {"ImageChange", "procedure ImageChange(Brightness: Number = 21.4; Rect: Array of Number = []; GreyScale: Boolean = false);",
     "TDVCmdImageChange", Func, "TFormImageChange", 111, Image},
    {"Scope", "procedure Scope(Command: String; Special: String);",
     "TDVCmdScope", Thread, "TFormScope", 0, Scope},
    // Built by ToProcDef: "procedure ShowLabor;" / "procedure HideLabor;".
    {"ShowLabor", "procedure ShowLabor;", "TDVShowLaborCommand", Func, "", 0, Host},
    {"HideLabor", "procedure HideLabor;", "TDVHideLaborCommand", Func, "", 0, Host},
    {"(if-then-else)", "", "TDVCmdIfThenElse", Edit, "TIfThenElse", 168, Structure},
    {"(case)", "", "TDVCmdCase", Edit, "T_Case", 167, Structure},
    {"(comment)", "", "TDVCmdComment", Edit, "TBemerkung", 180, Structure},
    {"(loop)", "", "TDVCmdLoop", Edit, "TDVGUILoop", 0, Structure},
}};
// clang-format on

}  // namespace

std::span<const TCatalogueRow> Catalogue() { return kCatalogue; }

const TCatalogueRow* FindProcedure(const QString& procedure)
{
    for (const TCatalogueRow& row : kCatalogue) {
        if (procedure.compare(QLatin1String(row.procedure), Qt::CaseInsensitive) == 0) return &row;
    }
    return nullptr;
}

const TCatalogueRow* FindCommandClass(const QString& commandClass)
{
    for (const TCatalogueRow& row : kCatalogue) {
        if (commandClass == QLatin1String(row.commandClass)) return &row;
    }
    return nullptr;
}

}  // namespace dv
