#include "framework/services.h"
#include "framework/synchronize.h"
#include "framework/translate.h"
#include "framework/waitevents.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <chrono>
#include <thread>
#include <unistd.h>

namespace dv {
namespace {

using Clock = std::chrono::steady_clock;

int MillisSince(Clock::time_point start)
{
    return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count());
}

TEST(RunControlTest, StopFromAnotherThreadEndsTheWaitPromptly)
{
    TRunControl control;
    int fds[2];
    ASSERT_EQ(::pipe(fds), 0);
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        control.SignalStop();
    });
    const auto start = Clock::now();
    EXPECT_EQ(WaitForEvents({{fds[0], POLLIN}}, &control, 5000), TWaitResult::Stopped);
    EXPECT_LT(MillisSince(start), 1000);
    stopper.join();
    EXPECT_TRUE(control.StopRequested());
    control.Reset();
    EXPECT_FALSE(control.StopRequested());
    EXPECT_EQ(WaitForEvents({{fds[0], POLLIN}}, &control, 20), TWaitResult::TimedOut);
    ASSERT_EQ(::write(fds[1], "x", 1), 1);
    EXPECT_EQ(WaitForEvents({{fds[0], POLLIN}}, &control, 1000), TWaitResult::Ready);
    ::close(fds[0]);
    ::close(fds[1]);
}

TEST(RunControlTest, WaitForStop)
{
    TRunControl control;
    EXPECT_FALSE(control.WaitForStop(0));
    control.SignalStop();
    EXPECT_TRUE(control.WaitForStop(0));
}

TEST(TranslateTest, FormatFillsPlaceholdersInOrder)
{
    EXPECT_EQ(Format("Der Bezeichner \"%s\" wurde nicht als Variable deklariert!", {"X"}),
              "Der Bezeichner \"X\" wurde nicht als Variable deklariert!");
    EXPECT_EQ(Format("ExitCode = %d", {"-2"}), "ExitCode = -2");
    EXPECT_EQ(Format("Es wurde ein Array erwartet", {"A"}), "Es wurde ein Array erwartet");
    EXPECT_EQ(Format("100%% %s %s", {"a"}), "100% a ");
    EXPECT_EQ(_("Abbrechen"), "Abbrechen");
}

TEST(SynchronizeTest, RunsOnTheMainThreadAndCarriesExceptionsBack)
{
    int argc = 0;
    QCoreApplication app(argc, nullptr);
    std::thread::id ranOn;
    bool failed = false;
    std::thread worker([&] {
        Synchronize([&] { ranOn = std::this_thread::get_id(); });
        try {
            Synchronize([] { throw std::runtime_error("boom"); });
        } catch (const std::runtime_error&) {
            failed = true;
        }
        QMetaObject::invokeMethod(&app, [&] { app.quit(); });
    });
    app.exec();
    worker.join();
    EXPECT_EQ(ranOn, std::this_thread::get_id());
    EXPECT_TRUE(failed);
}

}  // namespace
}  // namespace dv
