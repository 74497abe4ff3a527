// Every script under tests/host/scripts (regression/ included) runs with the expectations written in
// its comments:
//   // expect: TEXT                 the next line the script prints (all of them, in order)
//   // expect error: line N TEXT    an error reported for line N whose message contains TEXT
//   // expect check: line N         a failed Check on line N
//   // expect exit: N               the exit code (default: 0, or 1/2 as the errors imply)
//   // define: NAME=VALUE           a --define of the run
#include "tests/host/scriptrun.h"

#include <gtest/gtest.h>

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

namespace dv::host::test {
namespace {

struct TExpectations {
    QStringList output;
    std::vector<std::pair<int, QString>> errors;
    std::vector<int> checks;
    std::optional<int> exitCode;
    QStringList defines;
};

TExpectations ReadExpectations(const QString& text)
{
    TExpectations e;
    static const QRegularExpression re(QStringLiteral("// (expect|expect error|expect check|expect exit|define): ?(.*)$"),
                                       QRegularExpression::MultilineOption);
    for (auto it = re.globalMatch(text); it.hasNext();) {
        const auto m = it.next();
        const QString kind = m.captured(1), value = m.captured(2).trimmed();
        if (kind == "expect") e.output << value;
        if (kind == "expect exit") e.exitCode = value.toInt();
        if (kind == "define") e.defines << value;
        if (kind == "expect check") e.checks.push_back(value.section(' ', 1, 1).toInt());
        if (kind == "expect error") e.errors.emplace_back(value.section(' ', 1, 1).toInt(), value.section(' ', 2));
    }
    return e;
}

std::vector<std::string> ScriptFiles()
{
    std::vector<std::string> files;
    QDirIterator it(QStringLiteral(DV_HOST_SCRIPTS_DIR), {QStringLiteral("*.dvs")}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) files.push_back(it.next().mid(QStringLiteral(DV_HOST_SCRIPTS_DIR "/").size()).toStdString());
    std::sort(files.begin(), files.end());
    return files;
}

class ScriptFile : public testing::TestWithParam<std::string> {};

TEST_P(ScriptFile, MeetsItsExpectations)
{
    QFile file(QStringLiteral(DV_HOST_SCRIPTS_DIR "/") + QString::fromStdString(GetParam()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    const TExpectations expected = ReadExpectations(text);
    const TScriptOutcome outcome = RunScriptText(text, expected.defines);

    EXPECT_EQ(outcome.output.join('\n').toStdString(), expected.output.join('\n').toStdString())
        << "errors: " << outcome.errors.join('\n').toStdString();
    for (const auto& [line, message] : expected.errors) {
        const QString marker = QStringLiteral("test.dvs:%1:").arg(line);
        const bool found = std::any_of(outcome.errors.begin(), outcome.errors.end(), [&](const QString& e) {
            return e.startsWith(marker) && e.contains(message);
        });
        EXPECT_TRUE(found) << "no error on line " << line << " with '" << message.toStdString() << "' in:\n"
                           << outcome.errors.join('\n').toStdString();
    }
    EXPECT_EQ(outcome.errors.size(), static_cast<qsizetype>(expected.errors.size())) << outcome.errors.join('\n').toStdString();
    std::vector<int> checkLines;
    for (const QString& c : outcome.failedChecks) checkLines.push_back(c.section(':', 1, 1).toInt());
    EXPECT_EQ(checkLines, expected.checks);
    int exitCode = 0;
    if (!expected.errors.empty() || !expected.checks.empty()) exitCode = 1;
    EXPECT_EQ(outcome.exitCode, expected.exitCode.value_or(exitCode));
}

INSTANTIATE_TEST_SUITE_P(HostScripts, ScriptFile, testing::ValuesIn(ScriptFiles()),
                         [](const testing::TestParamInfo<std::string>& info) {
                             std::string name = info.param.substr(0, info.param.size() - 4);
                             for (char& c : name) {
                                 if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
                             }
                             return name;
                         });

}  // namespace
}  // namespace dv::host::test
