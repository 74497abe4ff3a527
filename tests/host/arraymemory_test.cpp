// The memory an Array of Number of a million elements holds in a running script.
#include "host/hostservices.h"
#include "host/runner.h"

#include <gtest/gtest.h>

#include <malloc.h>

namespace dv::host {
namespace {

// Bytes the allocator has handed out and not had back, mapped blocks included.
std::size_t HeapInUse()
{
    const struct mallinfo2 m = mallinfo2();
    return m.uordblks + m.hblkhd;
}

TEST(ArrayMemory, AMillionNumbersTakeAtMost16MB)
{
    struct Row {
        const char* how;
        const char* script;
    };
    const Row rows[] = {
        {"element by element",
         "var A : Array of Number\nvar I : Number\nfor I := 1 to 1000000 do\n  A[I] := I / 3\nend for\n"},
        {"SetLength", "var A : Array of Number\nSetLength(A, 1000000)\nA[1000000] := 1000000 / 3\n"},
    };
    for (const Row& r : rows) {
        SCOPED_TRACE(r.how);
        THost host;
        host.SetOutput({}, {});
        TScriptRun run(QStringLiteral("test.dvs"), host);
        ASSERT_TRUE(run.Load(QString::fromLatin1(r.script)));
        const std::size_t before = HeapInUse();
        run.Run();
        ASSERT_EQ(run.Report().exitCode, 0) << run.Report().FailureText().toStdString();
        const std::size_t after = HeapInUse();  // the program's variables still hold the array
        const auto* array = dynamic_cast<const TArrayValue*>(&host.FindVariable(QStringLiteral("A"))->GetValue());
        ASSERT_NE(array, nullptr);
        ASSERT_EQ(array->GetSize(), 1000000);
        EXPECT_EQ(array->GetNumber(1000000), 1000000.0L / 3);
        EXPECT_LE(after - before, std::size_t{16'000'000});
    }
}

}  // namespace
}  // namespace dv::host
