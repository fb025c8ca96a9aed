// renderer --inline=WINDOW,LEFT,TOP -cWIDTHxHEIGHT: draws into that area of another program's window: a
// filled rectangle 123456 (hexadecimal) with an edge of one pixel, fedcba. What it draws stays when it has
// ended.
#include <X11/Xlib.h>

#include <cstdio>

int main(int argc, char** argv) {
    unsigned long window = 0;
    int left = 0;
    int top = 0;
    unsigned width = 0;
    unsigned height = 0;
    if (argc != 3 || std::sscanf(argv[1], "--inline=%lu,%d,%d", &window, &left, &top) != 3 ||
        std::sscanf(argv[2], "-c%ux%u", &width, &height) != 2) {
        std::fprintf(stderr, "renderer: these are no parameters\n");
        return 1;
    }
    Display* display = XOpenDisplay(nullptr);
    if (display == nullptr) {
        return 1;
    }
    GC context = XCreateGC(display, window, 0, nullptr);
    XSetForeground(display, context, 0x123456);
    XFillRectangle(display, window, context, left, top, width, height);
    XSetForeground(display, context, 0xfedcba);
    XDrawRectangle(display, window, context, left, top, width - 1, height - 1);
    XFreeGC(display, context);
    XCloseDisplay(display);
}
