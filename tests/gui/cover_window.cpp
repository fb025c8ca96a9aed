// cover_window X Y WIDTH HEIGHT: a white window over that part of the screen, until standard input ends. It
// says when it is there.
#include <X11/Xlib.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
    Display* display = XOpenDisplay(nullptr);
    if (argc != 5 || display == nullptr) {
        return 1;
    }
    XSetWindowAttributes attributes{};
    attributes.override_redirect = True;
    attributes.background_pixel = 0xFFFFFF;
    attributes.event_mask = ExposureMask;
    const Window window = XCreateWindow(
        display, DefaultRootWindow(display), std::atoi(argv[1]), std::atoi(argv[2]),
        static_cast<unsigned>(std::atoi(argv[3])), static_cast<unsigned>(std::atoi(argv[4])), 0,
        CopyFromParent, InputOutput, nullptr, CWOverrideRedirect | CWBackPixel | CWEventMask, &attributes);
    XMapRaised(display, window);
    XEvent event{};
    XWindowEvent(display, window, ExposureMask, &event);
    std::puts("covering");
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    XCloseDisplay(display);
}
