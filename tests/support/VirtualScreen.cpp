// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/support/VirtualScreen.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

#include <csignal>
#include <cstdlib>
#include <mutex>
#include <stdexcept>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tarvelline::test
{
namespace
{
std::mutex errorMutex;
std::map<std::string, int> errorCounts;

int noteError (Display* display, XErrorEvent* event)
{
    char text[200] = {};
    XGetErrorText (display, event->error_code, text, sizeof (text));
    const std::lock_guard lock (errorMutex);
    ++errorCounts[std::string (text) + ", request " + std::to_string (event->request_code)];
    return 0;
}

/** Starts a server, if the display is free. @returns its process once it is ready, -1 if it does not start */
int startServer (const std::string& display, const std::string& screen)
{
    int ends[2];

    if (pipe (ends) != 0)
        return -1;

    const auto process = fork();

    if (process == 0)
    {
        prctl (PR_SET_PDEATHSIG, SIGTERM); // a test that dies takes its screen with it
        close (ends[0]);
        dup2 (open ("/dev/null", O_WRONLY), STDERR_FILENO); // it warns about keyboard symbols that nobody uses
        execlp ("Xvfb", "Xvfb", display.c_str(), "-displayfd", std::to_string (ends[1]).c_str(), "-screen", "0",
                screen.c_str(), "-nolisten", "tcp", "-noreset", static_cast<char*> (nullptr));
        _exit (127);
    }

    close (ends[1]);
    char answer = 0;

    while (read (ends[0], &answer, 1) == 1 && answer != '\n') // the display's number, once it is ready
    {
    }

    const auto isReady = answer == '\n';
    close (ends[0]);

    if (! isReady)
        waitpid (process, nullptr, 0);

    return isReady ? process : -1;
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

    std::vector<Window> viewableWindows()
    {
        Window root = 0, parent = 0, *children = nullptr;
        unsigned count = 0;
        XQueryTree (display, DefaultRootWindow (display), &root, &parent, &children, &count);
        std::vector<Window> result;

        for (unsigned i = 0; i < count; ++i)
        {
            XWindowAttributes attributes;

            if (XGetWindowAttributes (display, children[i], &attributes) != 0 && attributes.map_state == IsViewable)
                result.push_back (children[i]);
        }

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
    for (auto attempt = 0; attempt < 20 && serverProcess < 0; ++attempt)
    {
        const auto number = std::to_string (1000 + (getpid() + 37 * attempt) % 1000);
        name = ":" + number;
        serverProcess = startServer (name, screen);
    }

    if (serverProcess < 0)
        throw std::runtime_error ("Xvfb does not start");

    setenv ("DISPLAY", name.c_str(), 1);
    connection = std::make_unique<Connection> (name);
    XSetErrorHandler (noteError);
}

VirtualScreen::~VirtualScreen()
{
    connection.reset();
    kill (serverProcess, SIGTERM);
    waitpid (serverProcess, nullptr, 0);
}

void VirtualScreen::moveMouse (int x, int y)
{
    XTestFakeMotionEvent (connection->display, -1, x, y, CurrentTime);
    XSync (connection->display, False);
}

void VirtualScreen::pressMouse (bool down)
{
    XTestFakeButtonEvent (connection->display, Button1, down, CurrentTime);
    XSync (connection->display, False);
}

void VirtualScreen::pressShift (bool down)
{
    XTestFakeKeyEvent (connection->display, XKeysymToKeycode (connection->display, XK_Shift_L), down, CurrentTime);
    XSync (connection->display, False);
}

std::vector<std::uint32_t> VirtualScreen::capture (ScreenArea area)
{
    std::vector<std::uint32_t> pixels;
    auto* image =
        XGetImage (connection->display, DefaultRootWindow (connection->display), area.x, area.y,
                   static_cast<unsigned> (area.width), static_cast<unsigned> (area.height), AllPlanes, ZPixmap);

    if (image == nullptr)
        throw std::runtime_error ("cannot read the screen");

    for (auto y = 0; y < area.height; ++y)
        for (auto x = 0; x < area.width; ++x)
            pixels.push_back (0xff000000u | static_cast<std::uint32_t> (XGetPixel (image, x, y)));

    XDestroyImage (image);
    return pixels;
}

std::vector<ScreenArea> VirtualScreen::openWindows()
{
    std::vector<ScreenArea> areas;

    for (const auto window : connection->viewableWindows())
    {
        XWindowAttributes attributes;

        if (XGetWindowAttributes (connection->display, window, &attributes) != 0)
            areas.push_back ({ attributes.x, attributes.y, attributes.width, attributes.height });
    }

    return areas;
}

void VirtualScreen::focusTopmostWindow()
{
    const auto windows = connection->viewableWindows();

    if (! windows.empty())
        XSetInputFocus (connection->display, windows.back(), RevertToParent, CurrentTime);

    XSync (connection->display, False);
}

std::map<std::string, int> VirtualScreen::errors()
{
    const std::lock_guard lock (errorMutex);
    return errorCounts;
}
} // namespace tarvelline::test
