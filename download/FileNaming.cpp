#include "download/FileNaming.h"

#include <QDir>
#include <QFileInfo>
#include <QTextBoundaryFinder>

#include <algorithm>

namespace lumaro {

namespace {

constexpr int maximumCharacters = 100;
/// What file systems allow for one name, in bytes.
constexpr qsizetype maximumNameLength = 255;

QString fallbackName()
{
    return QStringLiteral("HLS Video");
}

bool isSeparator(QChar c)
{
    return QStringView(u"/\\:?%*|\"<>").contains(c);
}

/// The longest beginning of `text` that ends between two characters and satisfies `fits`.
template <typename Fits>
QString longestBeginning(const QString &text, Fits fits)
{
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype end = 0;
    int characters = 0;
    while (finder.toNextBoundary() != -1 && fits(++characters, text.first(finder.position())))
        end = finder.position();
    return text.first(end);
}

QString shortened(const QString &text, qsizetype maximumBytes)
{
    if (text.toUtf8().size() <= maximumBytes)
        return text;
    return longestBeginning(text, [maximumBytes](int, const QString &beginning) {
        return beginning.toUtf8().size() <= maximumBytes;
    });
}

} // namespace

QString safeFilename(const QString &name)
{
    QString safe = name;
    std::ranges::replace_if(safe, isSeparator, u'-');
    safe = safe.trimmed();
    // No file name can hold a NUL or half a character, and no list should show a line break.
    std::ranges::replace_if(
        safe, [](QChar c) { return c.category() == QChar::Other_Control; }, u'-');
    safe = QString::fromUtf8(safe.toUtf8());
    if (safe.isEmpty())
        return fallbackName();
    return longestBeginning(
        safe, [](int characters, const QString &) { return characters <= maximumCharacters; });
}

bool isTaken(const QString &path)
{
    const QFileInfo info(path);
    return info.exists() || info.isSymLink();
}

std::optional<QString> uniqueDestination(const QString &folder, const std::optional<QString> &name,
                                         const QString &fileExtension)
{
    if (!QFileInfo(folder).isDir())
        return std::nullopt;
    const QString base = safeFilename(name.value_or(QString()));
    for (int number = 1;; ++number) {
        const QString ending =
            (number == 1 ? QString() : u' ' + QString::number(number)) + u'.' + fileExtension;
        QString stem = shortened(base, maximumNameLength - ending.size());
        if (stem.isEmpty())
            stem = fallbackName();
        QString path = QDir(folder).filePath(stem + ending);
        if (!isTaken(path))
            return path;
    }
}

} // namespace lumaro
