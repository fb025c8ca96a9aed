// close_window WINDOW: asks a window to close, as the button in its title bar does.
#include <X11/Xlib.h>

#include <cstdlib>

int main(int argc, char** argv) {
    Display* display = XOpenDisplay(nullptr);
    if (argc != 2 || display == nullptr) {
        return 1;
    }
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = std::strtoul(argv[1], nullptr, 10);
    event.xclient.message_type = XInternAtom(display, "WM_PROTOCOLS", False);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(XInternAtom(display, "WM_DELETE_WINDOW", False));
    event.xclient.data.l[1] = CurrentTime;
    XSendEvent(display, event.xclient.window, False, NoEventMask, &event);
    XCloseDisplay(display);
}
