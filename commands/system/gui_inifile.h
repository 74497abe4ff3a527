#pragma once
// IniFile: one operation per call on an existing INI file (read a typed value, write one, delete
// an entry or a section, test for a section or an entry).
#include "framework/runedit.h"

#include <array>
#include <cstdint>

namespace dv {

enum class TIniMode : std::uint8_t {
    None = 0,
    Open, Close,
    ReadInteger, ReadFloat, ReadString, ReadBoolean,
    WriteInteger, WriteFloat, WriteString, WriteBoolean,
    DeleteValue, DeleteSection, SectionExist, IdentExist,
};

// One mode: its number, the keyword of the older line form ("IniFiles_" + keyword), the dialog's
// radio button, and which edits that radio button enables.
struct TIniModeRow {
    TIniMode mode;
    const char* keyword;
    const char* olderKeyword;
    const char* caption;
    const char* radioName;
    bool section;
    bool ident;
    bool value;
    bool result;  // enabled for DeleteSection and not for SectionExist: kept as the dialog always was
};

inline constexpr std::array<TIniModeRow, 14> kIniModes{{
    {TIniMode::Open, "Open", "IniFiles_Open", "Öffnen", "RB_Open", false, false, false, false},
    {TIniMode::Close, "Close", "IniFiles_Close", "Schliessen", "RB_Close", false, false, false, false},
    {TIniMode::ReadInteger, "ReadInteger", "IniFiles_ReadInteger", "Integer lesen", "RB_ReadInteger", true, true, false, true},
    {TIniMode::ReadFloat, "ReadFloat", "IniFiles_ReadFloat", "Float lesen", "RB_ReadFloat", true, true, false, true},
    {TIniMode::ReadString, "ReadString", "IniFiles_ReadString", "String lesen", "RB_ReadString", true, true, false, true},
    {TIniMode::ReadBoolean, "ReadBoolean", "IniFiles_ReadBoolean", "Boolean lesen", "RB_ReadBoolean", true, true, false, true},
    {TIniMode::WriteInteger, "WriteInteger", "IniFiles_WriteInteger", "Integer schreiben", "RB_WriteInteger", true, true, true, false},
    {TIniMode::WriteFloat, "WriteFloat", "IniFiles_WriteFloat", "Float schreiben", "RB_WriteFloat", true, true, true, false},
    {TIniMode::WriteString, "WriteString", "IniFiles_WriteString", "String schreiben", "RB_WriteString", true, true, true, false},
    {TIniMode::WriteBoolean, "WriteBoolean", "IniFiles_WriteBoolean", "Boolean schreiben", "RB_WriteBoolean", true, true, true, false},
    {TIniMode::DeleteValue, "DeleteValue", "IniFiles_DeleteValue", "Eintrag löschen", "RB_DeleteValue", true, true, false, false},
    {TIniMode::DeleteSection, "DeleteSection", "IniFiles_DeleteSection", "Abschnitt löschen", "RB_DeleteSection", true, false, false, true},
    {TIniMode::SectionExist, "SectionExist", "IniFiles_SectionExist", "Abschnitt existiert", "RB_SectionExist", true, false, false, false},
    {TIniMode::IdentExist, "IdentExist", "IniFiles_IdentExist", "Eintrag existiert", "RB_IdentExist", true, true, false, true},
}};
static_assert(kIniModes.size() == static_cast<std::size_t>(TIniMode::IdentExist), "one row per mode but None");

// The row of a mode number; nullptr for 0 and 15 and up.
const TIniModeRow* FindIniMode(int mode);

struct TDVCmdIniFilesFields {
    QString fileName;
    QString section;
    QString ident;
    QString value;
    QString result;
    std::uint8_t mode = 0;
    bool operator==(const TDVCmdIniFilesFields&) const = default;
};

class TDVCmdIniFiles : public TDVFieldsCommand<TDVFuncRunEdit, TDVCmdIniFilesFields> {
public:
    explicit TDVCmdIniFiles(TDVParser* parser);

    void SetDefaults() override;
    void SetParams(const TParamList& params) override;
    void ReadParams(TParamList& params) override;
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer) override;
    QStringList OlderNames() const override;
    bool IsOlderLine(const QString& line) const override;
    void Run(TParamList& params) override;

private:
    // The body on the current fields.
    void Start();
};

}  // namespace dv
