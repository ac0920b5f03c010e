#pragma once

#include <QColor>
#include <QHash>
#include <QImage>
#include <QString>

namespace lumaro {

/// What one picture of an icon depends on.
struct IconKey
{
    QString name; ///< the SVG file's base name
    int pixels = 0; ///< edge length in device pixels
    QRgb color = 0;

    bool operator==(const IconKey &) const = default;
};

inline size_t qHash(const IconKey &key, size_t seed = 0) noexcept
{
    return qHashMulti(seed, key.name, key.pixels, key.color);
}

/// The icon family as tinted pictures, each drawn once. Main thread.
class IconImages
{
public:
    /// The icons are the files `<folder>/<name>.svg`.
    explicit IconImages(QString folder);

    /// The icon tinted with `key.color`, premultiplied; a null picture for a size below one pixel
    /// or, with a warning, for a name that is not in the family.
    QImage image(const IconKey &key);

    qsizetype count() const { return m_images.size(); }

private:
    QImage draw(const IconKey &key) const;

    QString m_folder;
    QHash<IconKey, QImage> m_images;
};

} // namespace lumaro
