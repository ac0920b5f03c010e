#include "bench/playback/Screen.h"

#include <QHash>

#include <algorithm>
#include <cstdlib>

#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace lumaro {

namespace {

/// Of each of a colour's parts: conversion to YUV, 8 bits deep, and back.
constexpr int rounding = 6;
constexpr int colorPatch = 41;
constexpr int picturePatch = 96;

struct ImageDeleter
{
    void operator()(XImage *image) const { XDestroyImage(image); }
};
using Image = std::unique_ptr<XImage, ImageDeleter>;

Image capture(Display *display, const QRect &area)
{
    return Image(XGetImage(display, DefaultRootWindow(display), area.x(), area.y(),
                           unsigned(area.width()), unsigned(area.height()), AllPlanes, ZPixmap));
}

bool isClose(QRgb left, QRgb right)
{
    return std::abs(qRed(left) - qRed(right)) <= rounding
        && std::abs(qGreen(left) - qGreen(right)) <= rounding
        && std::abs(qBlue(left) - qBlue(right)) <= rounding;
}

} // namespace

std::unique_ptr<Screen> Screen::open()
{
    Display *display = XOpenDisplay(nullptr);
    if (!display)
        return nullptr;
    // Players' windows may vanish while they are looked at.
    XSetErrorHandler([](Display *, XErrorEvent *) { return 0; });
    return std::unique_ptr<Screen>(new Screen(display));
}

Screen::Screen(_XDisplay *display)
    : m_display(display)
{
}

Screen::~Screen()
{
    XCloseDisplay(m_display);
}

QRect Screen::patch(int size) const
{
    const int number = DefaultScreen(m_display);
    QRect area(0, 0, size, size);
    area.moveCenter({DisplayWidth(m_display, number) / 2, DisplayHeight(m_display, number) / 2});
    return area;
}

bool Screen::shows(QRgb color) const
{
    const Image image = capture(m_display, patch(colorPatch));
    if (!image)
        return false;
    constexpr int last = colorPatch - 1;
    constexpr int middle = colorPatch / 2;
    const QPoint points[] = {{0, 0}, {last, 0}, {middle, middle}, {0, last}, {last, last}};
    return std::ranges::all_of(points, [&](const QPoint &point) {
        return isClose(QRgb(XGetPixel(image.get(), point.x(), point.y())), color);
    });
}

size_t Screen::picture() const
{
    const Image image = capture(m_display, patch(picturePatch));
    return image ? qHashBits(image->data, size_t(image->bytes_per_line) * size_t(image->height))
                 : 0;
}

std::optional<QRect> Screen::window() const
{
    ::Window root = 0;
    ::Window parent = 0;
    ::Window *windows = nullptr;
    unsigned count = 0;
    if (!XQueryTree(m_display, DefaultRootWindow(m_display), &root, &parent, &windows, &count))
        return std::nullopt;
    std::optional<QRect> found;
    // From the bottom of the stack to its top.
    for (unsigned i = 0; i < count; ++i) {
        XWindowAttributes window{};
        if (!XGetWindowAttributes(m_display, windows[i], &window) || window.map_state != IsViewable)
            continue;
        const QRect area(window.x, window.y, window.width, window.height);
        if (area.contains(patch(1).center()))
            found = area;
    }
    if (windows)
        XFree(windows);
    return found;
}

} // namespace lumaro
