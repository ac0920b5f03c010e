#include "platform/mpv/MpvVideoItem.h"

#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QQuickWindow>

#include <mpv/render_gl.h>

#include <utility>

namespace lumaro {

namespace {

void *getProcAddress(void *, const char *name)
{
    const QOpenGLContext *context = QOpenGLContext::currentContext();
    return context ? reinterpret_cast<void *>(context->getProcAddress(name)) : nullptr;
}

/// Lives on the render thread, with its OpenGL context.
class MpvRenderer final : public QQuickFramebufferObject::Renderer
{
public:
    explicit MpvRenderer(MpvMediaPlayer *player)
        : m_player(player)
        , m_core(player ? player->core() : nullptr)
    {
    }

    ~MpvRenderer() override
    {
        if (m_context)
            mpv_render_context_free(m_context);
    }

    MpvRenderer(const MpvRenderer &) = delete;
    MpvRenderer &operator=(const MpvRenderer &) = delete;

    /// Qt cuts fractions of points off before it counts pixels, which would blur the picture.
    void synchronize(QQuickFramebufferObject *item) override
    {
        const double scale = item->window()->effectiveDevicePixelRatio();
        const QSize size = (item->size() * scale).toSize().expandedTo(QSize(1, 1));
        if (std::exchange(m_size, size) != size)
            invalidateFramebufferObject();
    }

    QOpenGLFramebufferObject *createFramebufferObject(const QSize &) override
    {
        if (!m_context && m_core)
            createContext();
        return new QOpenGLFramebufferObject(m_size);
    }

    void render() override
    {
        if (!m_context)
            return;
        QOpenGLFramebufferObject *target = framebufferObject();
        mpv_opengl_fbo fbo{.fbo = int(target->handle()),
                           .w = target->width(),
                           .h = target->height(),
                           .internal_format = 0};
        int flipY = 0;
        int blockForTargetTime = 0;
        mpv_render_param parameters[] = {
            {MPV_RENDER_PARAM_OPENGL_FBO, &fbo},
            {MPV_RENDER_PARAM_FLIP_Y, &flipY},
            {MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &blockForTargetTime},
            {MPV_RENDER_PARAM_INVALID, nullptr},
        };
        mpv_render_context_render(m_context, parameters);
    }

private:
    void createContext()
    {
        mpv_opengl_init_params gl{.get_proc_address = &getProcAddress,
                                  .get_proc_address_ctx = nullptr};
        mpv_render_param parameters[] = {
            {MPV_RENDER_PARAM_API_TYPE, const_cast<char *>(MPV_RENDER_API_TYPE_OPENGL)},
            {MPV_RENDER_PARAM_OPENGL_INIT_PARAMS, &gl},
            {MPV_RENDER_PARAM_INVALID, nullptr},
        };
        if (mpv_render_context_create(&m_context, m_core->handle(), parameters) < 0) {
            m_context = nullptr;
            QMetaObject::invokeMethod(m_player, &MpvMediaPlayer::setRendererFailed,
                                      Qt::QueuedConnection);
            return;
        }
        mpv_render_context_set_update_callback(
            m_context, [](void *player) { static_cast<MpvMediaPlayer *>(player)->notifyFrame(); },
            m_player);
        QMetaObject::invokeMethod(m_player, &MpvMediaPlayer::setRendererReady,
                                  Qt::QueuedConnection);
    }

    MpvMediaPlayer *m_player;
    std::shared_ptr<MpvCore> m_core;
    mpv_render_context *m_context = nullptr;
    QSize m_size;
};

} // namespace

MpvVideoItem::MpvVideoItem(QQuickItem *parent)
    : QQuickFramebufferObject(parent)
{
    setTextureFollowsItemSize(false);
}

void MpvVideoItem::setPlayer(MpvMediaPlayer *player)
{
    if (m_player == player)
        return;
    if (m_player)
        m_player->disconnect(this);
    m_player = player;
    if (m_player) {
        connect(m_player, &MpvMediaPlayer::frameReady, this, &QQuickItem::update,
                Qt::QueuedConnection);
        m_player->setPlacement(m_placement);
    }
    Q_EMIT playerChanged();
}

void MpvVideoItem::setPlacement(const VideoPlacement &placement)
{
    if (m_placement == placement)
        return;
    m_placement = placement;
    if (m_player)
        m_player->setPlacement(placement);
}

QQuickFramebufferObject::Renderer *MpvVideoItem::createRenderer() const
{
    return new MpvRenderer(m_player);
}

} // namespace lumaro
