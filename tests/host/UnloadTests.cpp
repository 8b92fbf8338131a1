// SPDX-License-Identifier: GPL-3.0-or-later
#include <juce_core/juce_core.h>

#include <dlfcn.h>
#include <gtest/gtest.h>

namespace tarvelline::test
{
namespace
{
// A unique symbol among the exported ones keeps a module mapped for good: an update is not loaded until the host ends.
TEST (Module, IsUnmappedWhenAHostClosesIt)
{
    const juce::TemporaryFile copy (".so"); // whatever else has the module open
    ASSERT_TRUE (juce::File (TARVELLINE_MODULE_BINARY).copyFileTo (copy.getFile()));
    const auto path = copy.getFile().getFullPathName();

    auto* module = dlopen (path.toRawUTF8(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE (module, nullptr) << dlerror();
    ASSERT_TRUE (reinterpret_cast<bool (*) (void*)> (dlsym (module, "ModuleEntry")) (module));
    EXPECT_NE (reinterpret_cast<void* (*) ()> (dlsym (module, "GetPluginFactory"))(), nullptr);
    EXPECT_TRUE (reinterpret_cast<bool (*)()> (dlsym (module, "ModuleExit"))());
    dlclose (module);

    EXPECT_EQ (dlopen (path.toRawUTF8(), RTLD_NOW | RTLD_NOLOAD), nullptr);
}
} // namespace
} // namespace tarvelline::test
