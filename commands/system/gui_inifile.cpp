#include "commands/system/gui_inifile.h"

#include "commands/system/initext.h"
#include "commands/system/platform_files.h"
#include "framework/intconvert.h"
#include "framework/olderline.h"
#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/parser.h"
#include "framework/services.h"
#include "framework/translate.h"

#include <QFile>
#include <QFileInfo>

namespace dv {

namespace {

const QString kFileName = QStringLiteral("FileName");
const QString kSection = QStringLiteral("Section");
const QString kIdent = QStringLiteral("Ident");
const QString kValue = QStringLiteral("Value");
const QString kResult = QStringLiteral("Result");
const QString kMode = QStringLiteral("Mode");

// A line break in a name or value would become a line of its own in the file (a new section, a
// foreign key), so it is refused before anything is written.
void RefuseLineBreaks(const TDVCmdIniFiles::TFields& f)
{
    for (const QString* text : {&f.section, &f.ident, &f.value}) {
        if (text->contains('\n') || text->contains('\r')) {
            throw TDVRuntimeException(Format(_("Zeilenumbruch in \"%s\" kann nicht in eine INI-Datei geschrieben werden"), {*text}));
        }
    }
}

// Names the file could not give back: "]" ends a section name, "=" a key, a leading ";" or "#"
// makes a comment, and an empty name is no name. Written, they would come back as other names and
// every later write would add the entry again.
void RefuseUnreadableNames(const TDVCmdIniFiles::TFields& f)
{
    for (const QString* name : {&f.section, &f.ident}) {
        const QString t = name->trimmed();
        if (t.isEmpty() || t.contains(']') || t.contains('=') || t.startsWith(';') || t.startsWith('#')) {
            throw TDVRuntimeException(Format(_("Der Name \"%s\" kann nicht in eine INI-Datei geschrieben werden: "
                                               "Namen dürfen nicht leer sein, kein \"]\" oder \"=\" enthalten und "
                                               "nicht mit \";\" oder \"#\" beginnen."),
                                             {*name}));
        }
    }
}

void RefuseWhatTheEncodingLacks(const TIniText& ini, const TDVCmdIniFiles::TFields& f, const QString& value)
{
    for (const QString* text : {&f.section, &f.ident, &value}) {
        if (!ini.CanHold(*text)) {
            throw TDVRuntimeException(Format(_("\"%s\" enthält Zeichen, die die INI-Datei %s in ihrer Kodierung "
                                               "Windows-1252 nicht speichern kann"),
                                             {*text, f.fileName}));
        }
    }
}

bool Writes(TIniMode mode) { return mode >= TIniMode::WriteInteger && mode <= TIniMode::DeleteSection; }

// The text a write mode stores, converted as the classic INI class converts it.
QString WriteText(TIniMode mode, const QString& value)
{
    switch (mode) {
    case TIniMode::WriteInteger: return QString::number(StrToInt(value));
    case TIniMode::WriteFloat: return DVFloatToStr(DVStrToFloat(value));
    case TIniMode::WriteBoolean: return StrToBoolStrict(value) ? QStringLiteral("1") : QStringLiteral("0");
    default: return value;
    }
}

std::int32_t ReadInteger(const TIniText& ini, const QString& section, const QString& ident, std::int32_t def)
{
    const auto text = ini.ReadString(section, ident);
    if (!text) return def;
    return TryStrToInt(*text).value_or(def);
}

long double ReadFloat(const TIniText& ini, const QString& section, const QString& ident)
{
    const auto text = ini.ReadString(section, ident);
    if (!text || text->isEmpty()) return 0;
    try {
        return DVStrToFloat(*text);
    } catch (const TDVRuntimeException&) {
        return 0;
    }
}

void SetResult(const QString& name, TValuePtr value)
{
    if (!name.isEmpty()) VarAccess().SetVariable(name, std::move(value));
}

}  // namespace

const TIniModeRow* FindIniMode(int mode)
{
    for (const TIniModeRow& row : kIniModes) {
        if (static_cast<int>(row.mode) == mode) return &row;
    }
    return nullptr;
}

TDVCmdIniFiles::TDVCmdIniFiles(TDVParser* parser) : TDVFieldsCommand("TDVCmdIniFiles", parser) {}

void TDVCmdIniFiles::SetDefaults() { fields_ = {}; }

void TDVCmdIniFiles::SetParams(const TParamList& params)
{
    fields_.fileName = params.GetString(kFileName);
    fields_.section = params.GetString(kSection);
    fields_.ident = params.GetString(kIdent);
    fields_.value = params.GetString(kValue);
    fields_.result = params.GetString(kResult);
    fields_.mode = static_cast<std::uint8_t>(TryStrToInt(params.GetString(kMode)).value_or(0));
}

void TDVCmdIniFiles::ReadParams(TParamList& params)
{
    params.AddString(kFileName, fields_.fileName);
    params.AddString(kSection, fields_.section);
    params.AddString(kIdent, fields_.ident);
    params.AddString(kValue, fields_.value);
    params.AddString(kResult, fields_.result);
    params.AddString(kMode, QString::number(fields_.mode));
}

bool TDVCmdIniFiles::DecodeScript(const QString& script, TParamList& params, TDVScriptImporter*)
{
    const QString line = script.trimmed();
    fields_.mode = 0;
    for (const TIniModeRow& row : kIniModes) {
        if (line.startsWith(QLatin1String(row.olderKeyword), Qt::CaseInsensitive)) {
            fields_.mode = static_cast<std::uint8_t>(row.mode);
            break;
        }
    }
    fields_.fileName = GetStrPart(QStringLiteral("(Filename:"), QStringLiteral(","), line);
    fields_.section = GetStrPart(QStringLiteral(",Sec:"), QStringLiteral(","), line);
    fields_.ident = GetStrPart(QStringLiteral(",Id:"), QStringLiteral(","), line);
    fields_.value = GetStrPart(QStringLiteral(",Value:"), QStringLiteral(","), line);
    fields_.result = GetStrPart(QStringLiteral(",Result:"), QStringLiteral(","), line);
    ReadParams(params);
    return true;
}

// "IniFiles_ReadString(Filename:a.ini,Sec:S,Id:K,Value:,Result:R,);"
bool TDVCmdIniFiles::IsOlderLine(const QString& line) const { return BeginsWithCall(line, OlderNames()); }

QStringList TDVCmdIniFiles::OlderNames() const
{
    QStringList names;
    for (const TIniModeRow& row : kIniModes) names << QLatin1String(row.olderKeyword);
    return names;
}

void TDVCmdIniFiles::Run(TParamList& params)
{
    SetParams(params);
    Start();
}

void TDVCmdIniFiles::Start()
{
    const QString path = ResolveProjectPath(fields_.fileName);
    if (!QFileInfo(path).isFile()) {
        throw TDVRuntimeException(Format(_("Die angegebene INI-Datei %s existiert nicht!"), {fields_.fileName}));
    }
    const TIniModeRow* row = FindIniMode(fields_.mode);
    if (!row || row->mode == TIniMode::Open || row->mode == TIniMode::Close) return;

    // Every read-modify-write under the file's lock, so that writers in other processes lose
    // nothing; readers share it and never see a file written in place half-way.
    const TFileLock lock(path, Writes(row->mode));
    if (!lock.Error().isEmpty()) {
        throw TDravikException(Format(_("Die INI-Datei %s ist gesperrt: %s"), {fields_.fileName, lock.Error()}));
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw TDravikException(Format(_("Die INI-Datei %s kann nicht gelesen werden: %s"), {fields_.fileName, file.errorString()}));
    }
    const QByteArray before = file.readAll();
    file.close();
    TIniText ini(before);
    const TFields& f = fields_;

    switch (row->mode) {
    case TIniMode::ReadInteger: return SetResult(f.result, std::make_unique<TNumberValue>(ReadInteger(ini, f.section, f.ident, 0)));
    case TIniMode::ReadFloat: return SetResult(f.result, std::make_unique<TNumberValue>(ReadFloat(ini, f.section, f.ident)));
    case TIniMode::ReadString:
        return SetResult(f.result, std::make_unique<TStringValue>(ini.ReadString(f.section, f.ident).value_or(QString())));
    case TIniMode::ReadBoolean:  // read as an integer: only a number other than 0 is true
        return SetResult(f.result, std::make_unique<TBooleanValue>(ReadInteger(ini, f.section, f.ident, 0) != 0));
    case TIniMode::SectionExist: return SetResult(f.result, std::make_unique<TBooleanValue>(ini.SectionExists(f.section)));
    case TIniMode::IdentExist: return SetResult(f.result, std::make_unique<TBooleanValue>(ini.ValueExists(f.section, f.ident)));
    case TIniMode::WriteInteger:
    case TIniMode::WriteFloat:
    case TIniMode::WriteString:
    case TIniMode::WriteBoolean: {
        RefuseLineBreaks(f);
        RefuseUnreadableNames(f);
        const QString text = WriteText(row->mode, f.value);
        RefuseWhatTheEncodingLacks(ini, f, text);
        ini.WriteString(f.section, f.ident, text);
        break;
    }
    case TIniMode::DeleteValue: ini.DeleteKey(f.section, f.ident); break;
    case TIniMode::DeleteSection: ini.EraseSection(f.section); break;
    default: return;
    }
    const QByteArray after = ini.Content();
    if (after == before) return;
    if (!ini.Intact()) {
        throw TDravikException(Format(_("Die INI-Datei %s kann nicht geschrieben werden: sie enthält Bytes, die in "
                                        "ihrer Kodierung kein Text sind"),
                                      {fields_.fileName}));
    }
    if (!ini.ReadsBackAlike(after)) {
        throw TDravikException(Format(_("Die INI-Datei %s kann nicht geschrieben werden: ohne die geänderte Zeile "
                                        "läse sie sich als UTF-8 statt als Windows-1252, und ihre übrigen "
                                        "Zeichen änderten sich"),
                                      {fields_.fileName}));
    }
    const QString error = ReplaceFileContent(path, after);
    if (!error.isEmpty()) {
        throw TDravikException(Format(_("Die INI-Datei %s kann nicht geschrieben werden: %s"), {fields_.fileName, error}));
    }
}

}  // namespace dv
