#include "Quellon/QtRunLoop.h"

#include <gtest/gtest.h>

#include <QCoreApplication>

#include <array>

namespace quellon {
namespace {

class QtRunLoopTest : public ::testing::Test {
protected:
    std::array<char, 5> name{"test"};
    std::array<char*, 2> arguments{name.data(), nullptr};
    int count = 1;
    QCoreApplication application{count, arguments.data()};
    PosixRunLoop loop;
};

TEST_F(QtRunLoopTest, whatIsDueWaitsForTheToolkitsLoop)
{
    bool ran = false;
    const auto work = loop.after(Seconds{0.0}, [&] {
        ran = true;
        QCoreApplication::quit();
    });
    const QtRunLoop embedded{loop};
    ASSERT_FALSE(ran) << "to end a loop that doesn't run yet has no effect";
    QCoreApplication::exec();
    EXPECT_TRUE(ran);
}

TEST_F(QtRunLoopTest, runsWhatComesLater)
{
    const QtRunLoop embedded{loop};
    RunLoop::Handle second;
    int ran = 0;
    loop.background([] {},
                    [&] {
                        ++ran;
                        second = loop.after(Seconds{0.001}, [&] {
                            ++ran;
                            QCoreApplication::quit();
                        });
                    });
    QCoreApplication::exec();
    EXPECT_EQ(ran, 2) << "work of another thread, and what that has scheduled";
}

} // namespace
} // namespace quellon
