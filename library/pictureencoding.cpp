#include "pictureencoding.h"

#include "libraryrecords.h"
#include "support/directories.h"

#include <QBuffer>
#include <QFileInfo>
#include <QImage>

QString EncodePicture(const QString &path, const QSize &target, int quality)
{
    QImage image;
    if (!image.load(path) || target.isEmpty())
        return QString();
    const QImage scaled = image.scaled(target, Qt::KeepAspectRatio, Qt::SmoothTransformation);

    const QString lower = path.toLower();
    const bool jpeg = lower.endsWith(QLatin1String(".jpg")) || lower.endsWith(QLatin1String(".jpeg"));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    const bool saved = jpeg ? scaled.save(&buffer, "JPG", quality) : scaled.save(&buffer, "PNG");
    if (!saved)
        return QString();
    return QString::fromLatin1(bytes.toBase64());
}

QImage MaterialPicture(const CLibMaterial &material)
{
    QImage image;
    if (!material.iconBase64.isEmpty()
        && image.loadFromData(QByteArray::fromBase64(material.iconBase64.toLatin1())))
        return image;
    const QString &path = material.iconPath;
    if (path.isEmpty())
        return QImage();
    // A file picked by the user is stored as it is; factory paths such as
    // "/Res/Icon/plywood.png" live below the resource directory.
    if (QFileInfo::exists(path) && image.load(path))
        return image;
    const QString separator = path.startsWith(QLatin1Char('/')) ? QString() : QStringLiteral("/");
    if (image.load(AppResourceDir() + separator + path))
        return image;
    return QImage();
}
