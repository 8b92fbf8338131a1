// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/VirtualScreen.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include <unistd.h>

namespace tarvelline::test
{
namespace
{
/** Ends the test at once: Xlib's own handler would run destructors, which wait for the message that is being handled. */
int endWithError (Display* display, XErrorEvent* event)
{
    char text[200] = {};
    XGetErrorText (display, event->error_code, text, sizeof (text));
    std::fprintf (stderr, "X error: %s, request %d\n", text, event->request_code);
    std::_Exit (EXIT_FAILURE);
}

/** Starts a server that ends with its last client, be it by a crash. @returns its output, once it is ready; nullptr if the
    display is taken. */
FILE* startServer (const std::string& display, const std::string& screen, pid_t& process)
{
    // Without its standard error, where it warns about keyboard symbols that nobody uses; says its number when it is ready.
    auto* server = popen (("echo $$; exec Xvfb " + display + " -displayfd 1 -terminate -nolisten tcp -screen 0 "
                           + screen + " 2> /dev/null")
                              .c_str(),
                          "r");

    if (server == nullptr || (std::fscanf (server, "%d ", &process) == 1 && std::fgetc (server) != EOF))
        return server;

    pclose (server);
    return nullptr;
}
} // namespace

struct VirtualScreen::Connection
{
    explicit Connection (const std::string& name) : display (XOpenDisplay (name.c_str()))
    {
        if (display == nullptr)
            throw std::runtime_error ("cannot connect to display " + name);

        // Names that every desktop has made known. The framework asks for the properties called so without looking
        // whether the server knows the name, which a bare one answers with errors.
        for (const auto* atom :
             { "WM_PROTOCOLS", "WM_TAKE_FOCUS", "WM_DELETE_WINDOW", "WM_CHANGE_STATE", "WM_STATE", "_NET_WM_PING",
               "_NET_WM_WINDOW_TYPE", "_NET_WM_WINDOW_TYPE_NORMAL", "_NET_WM_WINDOW_TYPE_COMBO", "_NET_WM_STATE",
               "_NET_WM_STATE_HIDDEN", "_NET_FRAME_EXTENTS", "_NET_WORKAREA", "_NET_WM_ALLOWED_ACTIONS" })
            XInternAtom (display, atom, False);
    }

    ~Connection() { XCloseDisplay (display); }

    std::vector<std::pair<Window, juce::Rectangle<int>>> viewableWindows()
    {
        Window root = 0, parent = 0, *children = nullptr;
        unsigned count = 0;
        const auto strict = XSetErrorHandler ([] (Display*, XErrorEvent*) { return 0; }); // a window may be gone by now
        XQueryTree (display, DefaultRootWindow (display), &root, &parent, &children, &count);
        std::vector<std::pair<Window, juce::Rectangle<int>>> result;

        for (unsigned i = 0; i < count; ++i)
        {
            XWindowAttributes a;

            if (XGetWindowAttributes (display, children[i], &a) != 0 && a.map_state == IsViewable)
                result.push_back ({ children[i], { a.x, a.y, a.width, a.height } });
        }

        XSetErrorHandler (strict);
        XFree (children);
        return result;
    }

    Display* display;
};

bool VirtualScreen::isAvailable() { return std::system ("command -v Xvfb > /dev/null") == 0; }

VirtualScreen::VirtualScreen (int width, int height)
{
    XInitThreads();
    const auto screen = std::to_string (width) + "x" + std::to_string (height) + "x24";
    std::string name;

    // Far from the numbers of desktops, and from the framework's default: a test without a display of its own that runs
    // beside this one would draw here, and end with this server.
    for (auto attempt = 0; attempt < 20 && server == nullptr; ++attempt)
    {
        const auto number = std::to_string (1000 + (getpid() + 37 * attempt) % 1000);
        name = ":" + number;
        server = startServer (name, screen, serverProcess);
    }

    if (server == nullptr)
        throw std::runtime_error ("Xvfb does not start");

    setenv ("DISPLAY", name.c_str(), 1);
    // The framework asks for the desktop's settings, which would start a session bus on this display.
    setenv ("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
    connection = std::make_unique<Connection> (name);
    XSetErrorHandler (endWithError);
}

VirtualScreen::~VirtualScreen()
{
    connection.reset();
    kill (serverProcess, SIGTERM); // whoever else is still connected
    pclose (server);               // waits for its end
}

void VirtualScreen::moveMouse (int x, int y)
{
    XTestFakeMotionEvent (connection->display, -1, x, y, CurrentTime);
    XSync (connection->display, False);
}

void VirtualScreen::pressMouse (bool down, unsigned button)
{
    XTestFakeButtonEvent (connection->display, button, down, CurrentTime);
    XSync (connection->display, False);
}

void VirtualScreen::pressKey (const char* key, bool down)
{
    const auto code = XKeysymToKeycode (connection->display, XStringToKeysym (key));
    XTestFakeKeyEvent (connection->display, code, down, CurrentTime);
    XSync (connection->display, False);
}

juce::Image VirtualScreen::capture (juce::Rectangle<int> area)
{
    auto* pixels = XGetImage (connection->display, DefaultRootWindow (connection->display), area.getX(), area.getY(),
                              static_cast<unsigned> (area.getWidth()), static_cast<unsigned> (area.getHeight()),
                              AllPlanes, ZPixmap);

    if (pixels == nullptr)
        throw std::runtime_error ("cannot read the screen");

    juce::Image image (juce::Image::RGB, area.getWidth(), area.getHeight(), false);

    for (auto y = 0; y < area.getHeight(); ++y)
        for (auto x = 0; x < area.getWidth(); ++x)
            image.setPixelAt (x, y, juce::Colour (0xff000000u | static_cast<juce::uint32> (XGetPixel (pixels, x, y))));

    XDestroyImage (pixels);
    return image;
}

std::vector<juce::Rectangle<int>> VirtualScreen::openWindows()
{
    std::vector<juce::Rectangle<int>> areas;

    for (const auto& [window, area] : connection->viewableWindows())
        areas.push_back (area);

    return areas;
}

void VirtualScreen::focusTopmostWindow()
{
    const auto windows = connection->viewableWindows();

    if (! windows.empty())
        XSetInputFocus (connection->display, windows.back().first, RevertToParent, CurrentTime);

    XSync (connection->display, False);
}

void VirtualScreen::focusWindowAt (int x, int y)
{
    auto* display = connection->display;
    const auto root = DefaultRootWindow (display);
    Window innermost = root, child = root;

    for (int childX = 0, childY = 0; child != None; innermost = child != None ? child : innermost)
        XTranslateCoordinates (display, root, innermost, x, y, &childX, &childY, &child);

    XSetInputFocus (display, innermost, RevertToParent, CurrentTime);
    XSync (display, False);
}

unsigned long VirtualScreen::keyboardOwner()
{
    Window owner = 0;
    int revert = 0;
    XGetInputFocus (connection->display, &owner, &revert);
    return owner;
}
} // namespace tarvelline::test
