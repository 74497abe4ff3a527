#include "commands/system/gui_sysutils.h"

#include "commands/system/platform_files.h"
#include "commands/system/platform_windows.h"
#include "framework/intconvert.h"
#include "framework/olderline.h"
#include "framework/dvtools.h"
#include "framework/parser.h"
#include "framework/services.h"

#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

namespace dv {

namespace {

const QString kCommand = QStringLiteral("Command");
const QString kFileName = QStringLiteral("FileName");
const QString kResult = QStringLiteral("Result");
const QString kTarget = QStringLiteral("Target");

bool IsRegularFile(const QString& path) { return QFileInfo(path).isFile(); }

}  // namespace

const TSysUtilRow& SysUtilRow(TSysUtilSubcommand command) { return kSysUtilCommands[static_cast<std::size_t>(command)]; }

TSysUtilSubcommand RecogniseSysUtil(const QString& commandText)
{
    const QString upper = commandText.toUpper();
    for (TSysUtilSubcommand c : kSysUtilMatchOrder) {
        if (upper.contains(QLatin1String(SysUtilRow(c).recognised))) return c;
    }
    return TSysUtilSubcommand::FileExist;
}

double DaysSince1899(const QDateTime& local)
{
    static const QDate kEpoch(1899, 12, 30);
    const QTime time = local.time();
    return static_cast<double>(kEpoch.daysTo(local.date())) + time.msecsSinceStartOfDay() / 86400000.0;
}

QString ExtractFilePath(const QString& fileName) { return fileName.left(fileName.lastIndexOf('/') + 1); }

TDVCmdSystemUtilities::TDVCmdSystemUtilities(TDVParser* parser)
    : TDVFieldsCommand("TDVCmdSystemUtilities", parser)
{
}

void TDVCmdSystemUtilities::SetDefaults() { fields_ = {}; }

void TDVCmdSystemUtilities::SetParams(const TParamList& params)
{
    fields_.command = RecogniseSysUtil(params.GetString(kCommand));
    fields_.fileName = params.GetString(kFileName);
    fields_.second = params.GetString(fields_.command == TSysUtilSubcommand::FileCopy ? kTarget : kResult);
}

void TDVCmdSystemUtilities::ReadParams(TParamList& params)
{
    const bool copy = fields_.command == TSysUtilSubcommand::FileCopy;
    params.AddString(kCommand, QLatin1String(SysUtilRow(fields_.command).keyword));
    params.AddString(kFileName, fields_.fileName);
    params.AddString(kResult, copy ? QString() : fields_.second);
    params.AddString(kTarget, copy ? fields_.second : QString());
}

bool TDVCmdSystemUtilities::DecodeScript(const QString& script, TParamList& params, TDVScriptImporter*)
{
    const QString upper = script.toUpper();
    fields_.command = TSysUtilSubcommand::FileExist;
    for (TSysUtilSubcommand c : kSysUtilOlderOrder) {
        if (upper.contains(QLatin1String(SysUtilRow(c).olderMarker))) {
            fields_.command = c;
            break;
        }
    }
    fields_.second = GetStrPart(QStringLiteral("):"), QStringLiteral(";"), script);
    if (fields_.command == TSysUtilSubcommand::FileCopy) {
        fields_.fileName = GetStrPart(QStringLiteral("("), QStringLiteral(","), script);
        fields_.second = GetStrPart(QStringLiteral(","), QStringLiteral(")"), script);
    } else {
        fields_.fileName = GetStrPart(QStringLiteral("("), QStringLiteral(")"), script);
    }
    ReadParams(params);
    return true;
}

// "FILEEXIST(a.txt):N;": the sub-command is the procedure name.
bool TDVCmdSystemUtilities::IsOlderLine(const QString& line) const { return BeginsWithCall(line, OlderNames()); }

QStringList TDVCmdSystemUtilities::OlderNames() const
{
    // The older form called each sub-command as a procedure of its own: "FileExist(...)".
    QStringList names;
    for (TSysUtilSubcommand c : kSysUtilOlderOrder) names << QLatin1String(SysUtilRow(c).keyword).mid(1).chopped(1);
    return names;
}

void TDVCmdSystemUtilities::Run(TParamList& params)
{
    SetParams(params);
    Start();
}

void TDVCmdSystemUtilities::Start()
{
    const QString path = ResolveProjectPath(fields_.fileName);
    const QByteArray native = path.toLocal8Bit();
    TValuePtr result;
    switch (fields_.command) {
    case TSysUtilSubcommand::FileExist: result = std::make_unique<TBooleanValue>(IsRegularFile(path)); break;
    case TSysUtilSubcommand::DeleteFile:
        result = std::make_unique<TBooleanValue>(IsRegularFile(path) && ::unlink(native.constData()) == 0);
        break;
    case TSysUtilSubcommand::FileCopy:
        CopyFileAtomically(path, ResolveProjectPath(fields_.second));  // a failed copy is silent
        return;
    case TSysUtilSubcommand::FileSize:
        result = std::make_unique<TNumberValue>(static_cast<std::int32_t>(FileGetSize(path)));
        break;
    case TSysUtilSubcommand::FileDate: {
        const QFileInfo info(path);
        if (!info.exists()) return;
        result = std::make_unique<TNumberValue>(DaysSince1899(info.lastModified().toLocalTime()));
        break;
    }
    case TSysUtilSubcommand::GetFilePath: result = std::make_unique<TStringValue>(ExtractFilePath(fields_.fileName)); break;
    case TSysUtilSubcommand::DirectoryExists: result = std::make_unique<TBooleanValue>(QFileInfo(path).isDir()); break;
    case TSysUtilSubcommand::FileInUse: result = std::make_unique<TBooleanValue>(IsFileInUse(path)); break;
    case TSysUtilSubcommand::CreateDir: result = std::make_unique<TBooleanValue>(::mkdir(native.constData(), 0777) == 0); break;
    case TSysUtilSubcommand::FindWindow:
        result = std::make_unique<TNumberValue>(static_cast<long double>(FindTopLevelWindow(fields_.fileName)));
        break;
    case TSysUtilSubcommand::DestroyWindow: {
        // The handle is converted strictly; a text that is no integer fails here.
        const auto handle = static_cast<std::uint32_t>(StrToInt(fields_.fileName));
        result = std::make_unique<TBooleanValue>(IconifyTopLevelWindow(handle));
        break;
    }
    }
    if (result && !fields_.second.isEmpty()) VarAccess().SetVariable(fields_.second, std::move(result));
}

}  // namespace dv
