#pragma once
// dvrun's command line: options, the run of one script, exit codes 0 (passed), 1 (runtime error,
// failed check or stop) and 2 (usage or parse error).
#include <QString>
#include <QStringList>

#include <optional>

namespace dv::host {

struct TCliOptions {
    QStringList defines;  // NAME=VALUE
    QStringList answers;  // Procedure=Text
    QString project;
    QString junit;
    QString log;
    std::optional<qint64> maxArray;   // --max-array: elements of one array
    std::optional<qint64> maxString;  // --max-string: characters of one text
    std::optional<qint64> seed;       // --seed: Random repeats its numbers
    QString artifacts;  // folder for pictures of comparisons; empty: none
    bool list = false;
    bool builtins = false;            // --list --builtins: the host's own procedures and functions
    bool all = false;                 // --list --all: unavailable commands too
    bool convert = false;
    bool help = false;
    QString script;
};

// The options of an argument list (without the program name); the usage error text when wrong.
std::optional<QString> ParseOptions(const QStringList& args, TCliOptions& options);
QString UsageText();
// The whole of dvrun; argc/argv are kept for the application object.
int RunDvrun(int& argc, char** argv);

}  // namespace dv::host
