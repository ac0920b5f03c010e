#include "ui/IconImages.h"

#include <QFile>
#include <QPainter>
#include <QStringBuilder>
#include <QSvgRenderer>

namespace lumaro {

namespace {

// A colour or a scale that changes often must not make the cache grow without end.
constexpr qsizetype maxImages = 512;

} // namespace

IconImages::IconImages(QString folder)
    : m_folder(std::move(folder))
{
}

QImage IconImages::image(const IconKey &key)
{
    if (key.name.isEmpty() || key.pixels < 1)
        return {};
    if (const auto known = m_images.constFind(key); known != m_images.cend())
        return *known;
    if (m_images.size() >= maxImages)
        m_images.clear();
    return *m_images.insert(key, draw(key));
}

QImage IconImages::draw(const IconKey &key) const
{
    const QString file = m_folder % u'/' % key.name % QStringLiteral(".svg");
    if (!QFile::exists(file)) {
        qWarning("No icon is called \"%s\"", qUtf8Printable(key.name));
        return {};
    }
    QSvgRenderer renderer(file);
    QImage image(key.pixels, key.pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), QColor::fromRgba(key.color));
    return image;
}

} // namespace lumaro
