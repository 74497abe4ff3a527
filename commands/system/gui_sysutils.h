#pragma once
// SysUtils: one small file or window operation named by a keyword, its outcome optionally written
// into a script variable.
#include "framework/runedit.h"

#include <QDateTime>

#include <array>
#include <cstdint>

namespace dv {

enum class TSysUtilSubcommand : std::uint8_t {
    FileExist, DeleteFile, FileCopy, FileSize, FileDate, GetFilePath,
    DirectoryExists, FileInUse, CreateDir, FindWindow, DestroyWindow,
};

// One sub-command: the keyword the editor writes (with its quotes), the upper-case text that
// recognises it, the marker of the older line form ("" where there is none), the dialog's radio
// button and its caption.
struct TSysUtilRow {
    TSysUtilSubcommand command;
    const char* keyword;
    const char* recognised;
    const char* olderMarker;
    const char* radioName;
    const char* caption;
};

inline constexpr std::array<TSysUtilRow, 11> kSysUtilCommands{{
    {TSysUtilSubcommand::FileExist, "\"FileExist\"", "FILEEXIST", "FILEEXIST(", "RB_Fileexist",
     "FileExists : Prüft, ob eine bestimmte Datei vorhanden ist."},
    {TSysUtilSubcommand::DeleteFile, "\"DeleteFile\"", "DELETEFILE", "DELETEFILE(", "RB_DeleteFile", "DeleteFile: Löscht eine Datei."},
    {TSysUtilSubcommand::FileCopy, "\"FileCopy\"", "FILECOPY", "FILECOPY(", "RB_Filecopy", "FileCopy"},
    {TSysUtilSubcommand::FileSize, "\"FileSize\"", "FILESIZE", "FILESIZE(", "RB_Filesize", "Filesize"},
    {TSysUtilSubcommand::FileDate, "\"FileDate\"", "FILEDATE", "", "RB_FileAge", "FileAge"},
    {TSysUtilSubcommand::GetFilePath, "\"GetFilePath\"", "GETFILEPATH", "GETFILEPATH(", "RB_GetFilePath", "GetFilePath"},
    {TSysUtilSubcommand::DirectoryExists, "\"DirectoryExists\"", "DIRECTORYEXISTS", "DIRECTORYEXISTS(", "RB_DirExist", "DirectoryExists"},
    {TSysUtilSubcommand::FileInUse, "\"FileInUse\"", "FILEINUSE", "FILEINUSE(", "RB_FileInUse",
     "File in Use: Prüft ob die Datei in Benutzung ist."},
    {TSysUtilSubcommand::CreateDir, "\"CreateDir\"", "CREATEDIR", "CREATEDIR(", "RB_CreateDIR", "CreateDir"},
    {TSysUtilSubcommand::FindWindow, "\"FindWindow\"", "FINDWINDOW", "FINDWINDOW(", "RB_FindWindow", "FindWindow"},
    {TSysUtilSubcommand::DestroyWindow, "\"DestroyWindow\"", "DESTROYWINDOW", "DESTROYWINDOW(", "RB_DestroyWindow", "DestroyWindow"},
}};
static_assert(kSysUtilCommands.size() == static_cast<std::size_t>(TSysUtilSubcommand::DestroyWindow) + 1);

// The order in which a Command text is searched for keywords: the first contained one decides,
// none gives FileExist. CreateDir is looked for before FileInUse, unlike the table order.
inline constexpr std::array kSysUtilMatchOrder{
    TSysUtilSubcommand::DeleteFile, TSysUtilSubcommand::FileCopy, TSysUtilSubcommand::FileSize,
    TSysUtilSubcommand::FileDate, TSysUtilSubcommand::GetFilePath, TSysUtilSubcommand::DirectoryExists,
    TSysUtilSubcommand::CreateDir, TSysUtilSubcommand::FileInUse, TSysUtilSubcommand::FindWindow,
    TSysUtilSubcommand::DestroyWindow,
};
// The order of the older line form's markers.
inline constexpr std::array kSysUtilOlderOrder{
    TSysUtilSubcommand::FileExist, TSysUtilSubcommand::DeleteFile, TSysUtilSubcommand::FileCopy,
    TSysUtilSubcommand::FileSize, TSysUtilSubcommand::GetFilePath, TSysUtilSubcommand::DirectoryExists,
    TSysUtilSubcommand::CreateDir, TSysUtilSubcommand::FileInUse, TSysUtilSubcommand::FindWindow,
    TSysUtilSubcommand::DestroyWindow,
};

const TSysUtilRow& SysUtilRow(TSysUtilSubcommand command);
TSysUtilSubcommand RecogniseSysUtil(const QString& commandText);
// A point in time as days since 1899-12-30, the time of day as the fraction.
double DaysSince1899(const QDateTime& local);
// The path part of a file name: up to and including the last '/'.
QString ExtractFilePath(const QString& fileName);

struct TDVCmdSystemUtilitiesFields {
    TSysUtilSubcommand command = TSysUtilSubcommand::FileExist;
    QString fileName;
    QString second;  // copy target for FileCopy, the result variable otherwise
    bool operator==(const TDVCmdSystemUtilitiesFields&) const = default;
};

class TDVCmdSystemUtilities : public TDVFieldsCommand<TDVFuncRunEdit, TDVCmdSystemUtilitiesFields> {
public:
    explicit TDVCmdSystemUtilities(TDVParser* parser);

    void SetDefaults() override;
    void SetParams(const TParamList& params) override;
    void ReadParams(TParamList& params) override;
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer) override;
    QStringList OlderNames() const override;
    bool IsOlderLine(const QString& line) const override;
    void Run(TParamList& params) override;

private:
    void Start();
};

}  // namespace dv
