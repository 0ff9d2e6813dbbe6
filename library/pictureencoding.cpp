#include "pictureencoding.h"

#include <QBuffer>
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
