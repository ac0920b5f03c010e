#include "platform/qt/FrameGrabber.h"

#include <QOpenGLContext>
#include <QOpenGLExtraFunctions>

#include <thread>

#ifndef GL_BGRA
#define GL_BGRA 0x80E1
#endif

namespace lumaro {

namespace {

constexpr std::chrono::milliseconds longestWait{1000};
constexpr int bytesPerPixel = 4;

QOpenGLExtraFunctions *currentGl()
{
    const QOpenGLContext *context = QOpenGLContext::currentContext();
    return context ? context->extraFunctions() : nullptr;
}

/// `source` fitted into the output, with the origin at the top left.
QRect fitted(const QSize &source, const QSize &output)
{
    QRect target({0, 0}, source.scaled(output, Qt::KeepAspectRatio));
    // Rounding to even sides is no other shape.
    constexpr int rounding = 4;
    if (output.width() - target.width() <= rounding
        && output.height() - target.height() <= rounding)
        target.setSize(output);
    target.moveCenter(QRect({0, 0}, output).center());
    return target;
}

} // namespace

/// One picture on its way out of the graphics card.
struct FrameGrabber::Slot
{
    enum class State { Free, Reading, Delivered };

    GLuint buffer = 0;
    GLsync fence = nullptr;
    MediaTime time{};
    State state = State::Free;
    std::atomic<bool> isInUse = false;
};

FrameGrabber::FrameGrabber(Settings settings)
    : m_settings(std::move(settings))
    , m_pacer(m_settings.minimumInterval)
{
    for (int i = 0; i < m_settings.depth; ++i)
        m_slots.push_back(std::make_shared<Slot>());
}

FrameGrabber::~FrameGrabber() = default;

void FrameGrabber::setFrame(const QSize &size, const QRect &source)
{
    m_source = source.intersected(QRect({0, 0}, size));
    m_source.moveTop(size.height() - m_source.top() - m_source.height());
}

bool FrameGrabber::isReading() const
{
    const std::scoped_lock lock(m_mutex);
    return m_reading > 0;
}

FrameGrabber::Statistics FrameGrabber::statistics() const
{
    const std::scoped_lock lock(m_mutex);
    return m_statistics;
}

void FrameGrabber::frameRendered()
{
    QOpenGLExtraFunctions *gl = currentGl();
    if (!gl)
        return;
    const MediaTime begin = mediaTimeNow();
    collect(false);
    const bool takes = !m_source.isEmpty() && m_pacer.takes(begin);
    Slot *slot = takes ? freeSlot(*gl) : nullptr;
    if (slot) {
        slot->time = begin;
        read(*gl, *slot, m_source);
    }
    const std::scoped_lock lock(m_mutex);
    ++m_statistics.rendered;
    m_statistics.grabbed += slot ? 1 : 0;
    m_statistics.leftOut += takes && !slot ? 1 : 0;
    m_statistics.time += mediaTimeNow() - begin;
}

FrameGrabber::Slot *FrameGrabber::freeSlot(QOpenGLExtraFunctions &gl)
{
    for (const auto &slot : m_slots) {
        if (slot->state == Slot::State::Delivered && !slot->isInUse) {
            gl.glBindBuffer(GL_PIXEL_PACK_BUFFER, slot->buffer);
            gl.glUnmapBuffer(GL_PIXEL_PACK_BUFFER);
            gl.glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
            slot->state = Slot::State::Free;
        }
        if (slot->state == Slot::State::Free)
            return slot.get();
    }
    return nullptr;
}

void FrameGrabber::read(QOpenGLExtraFunctions &gl, Slot &slot, const QRect &source)
{
    m_isReleased = false;
    const QSize size = m_settings.outputSize;
    const GLuint window = QOpenGLContext::currentContext()->defaultFramebufferObject();
    // Half a pair of pixels more or less is cut off rather than scaled away.
    const QSize excess = source.size() - size;
    const bool isExact =
        excess.width() >= 0 && excess.width() <= 1 && excess.height() >= 0 && excess.height() <= 1;
    if (!isExact)
        scale(gl, source);
    gl.glBindFramebuffer(GL_FRAMEBUFFER, isExact ? window : m_framebuffer);

    if (slot.buffer == 0)
        gl.glGenBuffers(1, &slot.buffer);
    gl.glBindBuffer(GL_PIXEL_PACK_BUFFER, slot.buffer);
    const auto bytes = GLsizeiptr(size.width()) * size.height() * bytesPerPixel;
    gl.glBufferData(GL_PIXEL_PACK_BUFFER, bytes, nullptr, GL_STREAM_READ);
    gl.glPixelStorei(GL_PACK_ALIGNMENT, bytesPerPixel);
    const QPoint from = isExact ? QPoint(source.left(), source.top() + excess.height()) : QPoint();
    gl.glReadPixels(from.x(), from.y(), size.width(), size.height(), GL_BGRA, GL_UNSIGNED_BYTE,
                    nullptr);
    gl.glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    gl.glBindFramebuffer(GL_FRAMEBUFFER, window);
    slot.fence = gl.glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    slot.state = Slot::State::Reading;
    const std::scoped_lock lock(m_mutex);
    ++m_reading;
}

void FrameGrabber::scale(QOpenGLExtraFunctions &gl, const QRect &source)
{
    const QSize size = m_settings.outputSize;
    if (m_framebuffer == 0) {
        gl.glGenTextures(1, &m_texture);
        gl.glBindTexture(GL_TEXTURE_2D, m_texture);
        gl.glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, size.width(), size.height(), 0, GL_BGRA,
                        GL_UNSIGNED_BYTE, nullptr);
        gl.glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        gl.glBindTexture(GL_TEXTURE_2D, 0);
        gl.glGenFramebuffers(1, &m_framebuffer);
        gl.glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
        gl.glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, m_texture,
                                  0);
    }
    QRect target = fitted(source.size(), size);
    target.moveTop(size.height() - target.top() - target.height());
    gl.glBindFramebuffer(GL_READ_FRAMEBUFFER,
                         QOpenGLContext::currentContext()->defaultFramebufferObject());
    gl.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, m_framebuffer);
    gl.glDisable(GL_SCISSOR_TEST);
    if (target.size() != size) {
        gl.glClearColor(0, 0, 0, 1);
        gl.glClear(GL_COLOR_BUFFER_BIT);
    }
    gl.glBlitFramebuffer(source.left(), source.top(), source.left() + source.width(),
                         source.top() + source.height(), target.left(), target.top(),
                         target.left() + target.width(), target.top() + target.height(),
                         GL_COLOR_BUFFER_BIT, GL_LINEAR);
}

void FrameGrabber::collect(bool waits)
{
    QOpenGLExtraFunctions *gl = currentGl();
    if (!gl)
        return;
    const auto patience =
        waits ? GLuint64(std::chrono::nanoseconds(longestWait).count()) : GLuint64(0);
    // In the order in which they were taken.
    while (true) {
        Slot *oldest = nullptr;
        for (const auto &slot : m_slots)
            if (slot->state == Slot::State::Reading && (!oldest || slot->time < oldest->time))
                oldest = slot.get();
        if (!oldest
            || gl->glClientWaitSync(oldest->fence, GL_SYNC_FLUSH_COMMANDS_BIT, patience)
                == GL_TIMEOUT_EXPIRED)
            return;
        gl->glDeleteSync(oldest->fence);
        oldest->fence = nullptr;
        deliver(*gl, *oldest);
    }
}

void FrameGrabber::deliver(QOpenGLExtraFunctions &gl, Slot &slot)
{
    const QSize size = m_settings.outputSize;
    const qsizetype stride = qsizetype(size.width()) * bytesPerPixel;
    gl.glBindBuffer(GL_PIXEL_PACK_BUFFER, slot.buffer);
    const auto *const pixels = static_cast<const uchar *>(
        gl.glMapBufferRange(GL_PIXEL_PACK_BUFFER, 0, stride * size.height(), GL_MAP_READ_BIT));
    gl.glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    {
        const std::scoped_lock lock(m_mutex);
        --m_reading;
    }
    slot.state = pixels ? Slot::State::Delivered : Slot::State::Free;
    if (!pixels)
        return;
    slot.isInUse = true;
    const auto shared = *std::ranges::find(m_slots, &slot, &std::shared_ptr<Slot>::get);
    m_settings.deliver({.presentationTime = slot.time,
                        .size = size,
                        .topRow = pixels + (size.height() - 1) * stride,
                        .bytesPerLine = -stride,
                        .owner = std::shared_ptr<const void>(
                            pixels, [shared](const void *) { shared->isInUse = false; })});
}

void FrameGrabber::release(std::chrono::milliseconds patience)
{
    QOpenGLExtraFunctions *gl = currentGl();
    if (!gl)
        return;
    bool isReleased = true;
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (const auto &slot : m_slots) {
        // Whoever uses it reads from memory that goes with the context.
        while (slot->isInUse && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (slot->isInUse) {
            isReleased = false;
            continue;
        }
        if (slot->fence)
            gl->glDeleteSync(std::exchange(slot->fence, nullptr));
        if (slot->buffer != 0)
            gl->glDeleteBuffers(1, &slot->buffer);
        slot->buffer = 0;
        slot->state = Slot::State::Free;
    }
    if (m_framebuffer != 0) {
        gl->glDeleteFramebuffers(1, &m_framebuffer);
        gl->glDeleteTextures(1, &m_texture);
    }
    m_framebuffer = m_texture = 0;
    m_isReleased = isReleased;
    const std::scoped_lock lock(m_mutex);
    m_reading = 0;
}

} // namespace lumaro
