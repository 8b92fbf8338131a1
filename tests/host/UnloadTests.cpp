// SPDX-License-Identifier: GPL-3.0-or-later
#include <juce_core/juce_core.h>

#include <cstdint>
#include <dlfcn.h>
#include <gtest/gtest.h>

namespace tarvelline::test
{
namespace
{
/** What every interface of a module begins with, as a program in C calls it. */
struct Calls
{
    void *queryInterface, *addRef;
    std::uint32_t (*release) (void*);
};

// A unique symbol among the exported ones keeps a module mapped for good: an update is not loaded until the host ends.
TEST (Module, IsUnmappedWhenAHostClosesIt)
{
    const juce::TemporaryFile copy (".so"); // whatever else has the module open
    ASSERT_TRUE (juce::File (TARVELLINE_MODULE_BINARY).copyFileTo (copy.getFile()));
    const auto path = copy.getFile().getFullPathName();

    auto* module = dlopen (path.toRawUTF8(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE (module, nullptr) << dlerror();
    ASSERT_TRUE (reinterpret_cast<bool (*) (void*)> (dlsym (module, "ModuleEntry")) (module));
    auto** factory = reinterpret_cast<Calls** (*) ()> (dlsym (module, "GetPluginFactory"))();
    ASSERT_NE (factory, nullptr);
    EXPECT_EQ ((*factory)->release (factory), 0u);
    EXPECT_TRUE (reinterpret_cast<bool (*)()> (dlsym (module, "ModuleExit"))());
    dlclose (module);

    EXPECT_EQ (dlopen (path.toRawUTF8(), RTLD_NOW | RTLD_NOLOAD), nullptr);
}
} // namespace
} // namespace tarvelline::test
