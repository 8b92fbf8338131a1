// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/window/HostWindow.h"

#include <gtest/gtest.h>

namespace tarvelline::test
{
namespace
{
/** The screen and, on it, the framework: up before the first test and down after the last. */
class Stage : public testing::Environment
{
public:
    void SetUp() override
    {
        if (! VirtualScreen::isAvailable())
        {
            constexpr auto reason = "no window is tested: the program Xvfb is not installed (Debian package xvfb)";

            if (std::getenv ("CI") != nullptr)
                FAIL() << reason;

            GTEST_SKIP() << reason;
        }

        screen = std::make_unique<VirtualScreen> (1280, 800);
        framework = std::make_unique<juce::ScopedJuceInitialiser_GUI>();
        HostWindow::screen = screen.get();
    }

    void TearDown() override
    {
        framework.reset();
        screen.reset();
    }

private:
    std::unique_ptr<VirtualScreen> screen;
    std::unique_ptr<juce::ScopedJuceInitialiser_GUI> framework;
};
} // namespace
} // namespace tarvelline::test

int main (int argc, char** argv)
{
    testing::InitGoogleTest (&argc, argv);
    testing::AddGlobalTestEnvironment (new tarvelline::test::Stage); // the framework of tests owns it
    return RUN_ALL_TESTS();
}
