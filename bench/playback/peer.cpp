// The least that shows a film with libmpv in Qt Quick: one window, one picture, nothing else. What
// Lumaro takes beyond this is its own doing.  bench_playback_peer FILE X Y WIDTH HEIGHT

#include <QGuiApplication>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QQuickFramebufferObject>
#include <QQuickWindow>

#include <array>
#include <clocale>
#include <utility>

#include <mpv/client.h>
#include <mpv/render_gl.h>

namespace {

struct Film
{
    mpv_handle *mpv = nullptr;
    QByteArray file;
};

void *getProcAddress(void *, const char *name)
{
    return reinterpret_cast<void *>(QOpenGLContext::currentContext()->getProcAddress(name));
}

class PictureRenderer final : public QQuickFramebufferObject::Renderer
{
public:
    PictureRenderer(const Film &film, QQuickItem *item)
        : m_film(film)
        , m_item(item)
    {
    }

    QOpenGLFramebufferObject *createFramebufferObject(const QSize &size) override
    {
        if (!m_context)
            begin();
        return new QOpenGLFramebufferObject(size);
    }

    void render() override
    {
        QOpenGLFramebufferObject *target = framebufferObject();
        mpv_opengl_fbo fbo{.fbo = int(target->handle()),
                           .w = target->width(),
                           .h = target->height(),
                           .internal_format = 0};
        int no = 0;
        std::array parameters{
            mpv_render_param{MPV_RENDER_PARAM_OPENGL_FBO, &fbo},
            mpv_render_param{MPV_RENDER_PARAM_FLIP_Y, &no},
            mpv_render_param{MPV_RENDER_PARAM_BLOCK_FOR_TARGET_TIME, &no},
            mpv_render_param{MPV_RENDER_PARAM_INVALID, nullptr},
        };
        mpv_render_context_render(m_context, parameters.data());
    }

private:
    /// Opens the film only when there is a place for its picture.
    void begin()
    {
        mpv_opengl_init_params gl{.get_proc_address = &getProcAddress,
                                  .get_proc_address_ctx = nullptr};
        std::array parameters{
            mpv_render_param{MPV_RENDER_PARAM_API_TYPE,
                             const_cast<char *>(MPV_RENDER_API_TYPE_OPENGL)},
            mpv_render_param{MPV_RENDER_PARAM_OPENGL_INIT_PARAMS, &gl},
            mpv_render_param{MPV_RENDER_PARAM_INVALID, nullptr},
        };
        if (mpv_render_context_create(&m_context, m_film.mpv, parameters.data()) < 0)
            qFatal("No render context.");
        mpv_render_context_set_update_callback(
            m_context,
            [](void *item) {
                QMetaObject::invokeMethod(static_cast<QQuickItem *>(item), &QQuickItem::update,
                                          Qt::QueuedConnection);
            },
            m_item);
        std::array<const char *, 3> load{"loadfile", m_film.file.constData(), nullptr};
        mpv_command_async(m_film.mpv, 0, load.data());
    }

    Film m_film;
    QQuickItem *m_item;
    mpv_render_context *m_context = nullptr;
};

class Picture final : public QQuickFramebufferObject
{
public:
    Picture(const Film &film, QQuickItem *parent)
        : QQuickFramebufferObject(parent)
        , m_film(film)
    {
    }

    Renderer *createRenderer() const override
    {
        return new PictureRenderer(m_film, const_cast<Picture *>(this));
    }

private:
    Film m_film;
};

mpv_handle *createMpv()
{
    mpv_handle *mpv = mpv_create();
    for (const auto &[name, value] : {std::pair{"vo", "libmpv"},
                                      {"config", "no"},
                                      {"video-timing-offset", "0"},
                                      {"hwdec", "no"}})
        mpv_set_option_string(mpv, name, value);
    if (mpv_initialize(mpv) < 0)
        qFatal("libmpv does not start.");
    return mpv;
}

} // namespace

int main(int argc, char *argv[])
{
    QQuickWindow::setGraphicsApi(QSGRendererInterface::OpenGL);
    const QGuiApplication application(argc, argv);
    // libmpv refuses to start otherwise.
    std::setlocale(LC_NUMERIC, "C"); // NOLINT(concurrency-mt-unsafe): before any thread reads it
    if (argc != 6)
        qFatal("bench_playback_peer FILE X Y WIDTH HEIGHT");

    QQuickWindow window;
    window.setColor(Qt::black);
    window.setGeometry(atoi(argv[2]), atoi(argv[3]), atoi(argv[4]), atoi(argv[5]));
    Picture picture({createMpv(), argv[1]}, window.contentItem());
    picture.setSize(window.size());
    window.show();
    return QGuiApplication::exec();
}
